// Rollback journals that carry a checksum.

#include "journal.h"

#include <cstdint>
#include <fstream>
#include <string_view>

namespace {

/// What a header begins with.
constexpr std::string_view MAGIC("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
constexpr std::size_t HEADER_SIZE = 28;
constexpr std::size_t SEAL_SIZE = 8;
constexpr sqlite3_int64 SEALED_HEADER_SIZE = HEADER_SIZE + SEAL_SIZE;

// Numbers in a header, of four bytes each, the highest byte first.
constexpr std::size_t RECORD_COUNT = 8;
constexpr std::size_t SECTOR_SIZE = 20;
constexpr std::size_t PAGE_SIZE = 24;

/// Bytes of a record beside the page: the page's number and SQLite's checksum.
constexpr sqlite3_int64 AROUND_A_PAGE = 8;
constexpr sqlite3_int64 LARGEST_PAGE = 65536;

std::uint64_t number(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint64_t value = 0;
    for (char const byte : bytes.substr(offset, size))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

std::uint64_t seal_of(std::string_view header, CHECKSUM const& records) {
    return CHECKSUM().add(header.substr(0, HEADER_SIZE)).add(records.value()).value();
}

/// Whether a write is that of a header that does not count yet, which fills a sector.
bool is_new_header(std::string_view bytes) {
    return bytes.size() >= HEADER_SIZE + SEAL_SIZE
           && bytes.find_first_not_of('\0') >= RECORD_COUNT + 4
           && number(bytes, SECTOR_SIZE, 4) == bytes.size();
}

/// Reads bytes of a journal; "" when it ends before them.
int read(sqlite3_file* journal, std::string& bytes, std::size_t amount, sqlite3_int64 offset) {
    bytes.resize(amount);
    int const result =
        journal->pMethods->xRead(journal, bytes.data(), static_cast<int>(amount), offset);
    if (result != SQLITE_IOERR_SHORT_READ)
        return result;
    bytes.clear();
    return SQLITE_OK;
}

} // namespace

int JOURNAL_SEAL::write(sqlite3_file* journal, void const* bytes, int amount,
                        sqlite3_int64 offset) {
    std::string_view const text(static_cast<char const*>(bytes), static_cast<std::size_t>(amount));
    auto const do_write = [&](std::string_view what) {
        return journal->pMethods->xWrite(journal, what.data(), static_cast<int>(what.size()),
                                         offset);
    };
    if (is_new_header(text)) {
        m_header = text.substr(0, HEADER_SIZE);
        m_begin = offset;
        m_end = offset + amount;
        m_records = CHECKSUM();
        return do_write(text);
    }
    if (m_header.empty())
        return do_write(text);
    if (offset == m_end) {
        m_records.add(text);
        m_end += amount;
        return do_write(text);
    }
    // The header counts from now on. In one write with the seal, as a sector is written whole or
    // not at all.
    if (offset == m_begin && text.size() == RECORD_COUNT + 4 && text.starts_with(MAGIC)) {
        m_header.replace(0, text.size(), text);
        std::string sealed = m_header;
        std::uint64_t const seal = seal_of(m_header, m_records);
        for (std::size_t i = 0; i < SEAL_SIZE; ++i)
            sealed += static_cast<char>(seal >> (8 * (SEAL_SIZE - 1 - i)));
        return do_write(sealed);
    }
    m_header.clear();
    return do_write(text);
}

int check_journal(sqlite3_file* journal, bool& intact) {
    intact = true;
    sqlite3_int64 size = 0;
    int result = journal->pMethods->xFileSize(journal, &size);
    std::string header;
    std::string record;
    for (sqlite3_int64 begin = 0; result == SQLITE_OK;) {
        result = read(journal, header, HEADER_SIZE + SEAL_SIZE, begin);
        if (result != SQLITE_OK || header.empty())
            return result;
        std::uint64_t const seal = number(header, HEADER_SIZE, SEAL_SIZE);
        if (seal == 0)
            return SQLITE_OK;
        bool const is_header = header.starts_with(MAGIC);
        header.replace(0, MAGIC.size(), MAGIC);

        auto const sector = static_cast<sqlite3_int64>(number(header, SECTOR_SIZE, 4));
        auto const page = static_cast<sqlite3_int64>(number(header, PAGE_SIZE, 4));
        auto const count = static_cast<sqlite3_int64>(number(header, RECORD_COUNT, 4));
        sqlite3_int64 const first = begin + sector;
        sqlite3_int64 const record_size = page + AROUND_A_PAGE;
        CHECKSUM records;
        bool is_whole = first >= begin + SEALED_HEADER_SIZE && first <= size
                        && count <= (size - first) / record_size && page <= LARGEST_PAGE;
        for (sqlite3_int64 i = 0; is_whole && i < count; ++i) {
            result = read(journal, record, static_cast<std::size_t>(record_size),
                          first + i * record_size);
            if (result != SQLITE_OK)
                return result;
            is_whole = !record.empty();
            records.add(record);
        }
        bool const matches = is_whole && seal == seal_of(header, records);
        // What is no header at all was under way when the power failed, and the database is as it
        // was. A sealed header with another beginning is one that was changed.
        if (!is_header && !matches)
            return SQLITE_OK;
        if (!is_header || !matches) {
            intact = false;
            return SQLITE_OK;
        }
        sqlite3_int64 const end = first + count * record_size;
        begin = (end + sector - 1) / sector * sector;
    }
    return result;
}

bool is_sealed_journal(std::string const& path) {
    std::string header(HEADER_SIZE + SEAL_SIZE, '\0');
    std::ifstream file(path, std::ios::binary);
    return file.read(header.data(), static_cast<std::streamsize>(header.size()))
           && header.starts_with(MAGIC) && number(header, HEADER_SIZE, SEAL_SIZE) != 0;
}
