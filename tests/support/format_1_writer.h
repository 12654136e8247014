#ifndef FORMAT_1_WRITER_H
#define FORMAT_1_WRITER_H

/// @file
/// Store files of format 1, which the library reads but no longer writes.

#include "checksum.h"
#include "record.h"

#include <string>
#include <vector>

struct sqlite3;

/// Writes a store of format 1, as programs of that time did.
class FORMAT_1_WRITER {
public:
    /// Makes a store without classes in a new file.
    explicit FORMAT_1_WRITER(std::string const& path);
    ~FORMAT_1_WRITER();
    FORMAT_1_WRITER(FORMAT_1_WRITER const&) = delete;
    FORMAT_1_WRITER& operator=(FORMAT_1_WRITER const&) = delete;

    /// Adds a registered class, of which the next values and arrays are.
    void add_class(unsigned id);
    void put(std::string const& name, std::vector<CELL> const& cells);
    void put_array(std::string const& name, std::vector<std::vector<CELL>> const& elements);
    /// Runs statements.
    void run(std::string const& sql);

private:
    CHECKSUM start(std::string const& name, std::uint64_t kind) const;
    std::string as_fields(std::vector<CELL> const& cells) const;

    sqlite3* m_database = nullptr;
    STORED_CLASS m_class;
};

#endif
