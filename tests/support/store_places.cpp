#include "store_places.h"

#ifdef BIG_TEST_HAS_POSTGRES
#include "postgres_server.h"
#endif

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <unistd.h>

namespace {

/// Where files are in memory, if there is such a place: every commit waits for the disk.
std::filesystem::path fastest_folder() {
    std::filesystem::path const memory = "/dev/shm";
    return access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

} // namespace

TEMPORARY_FOLDER::TEMPORARY_FOLDER() : m_path(fastest_folder() / "big_store_XXXXXX") {
    if (mkdtemp(m_path.data()) == nullptr)
        throw std::runtime_error("no folder like " + m_path);
}

TEMPORARY_FOLDER::~TEMPORARY_FOLDER() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

namespace {

class SQLITE_PLACE : public STORE_PLACE {
public:
    std::string address() const override { return m_folder.path("values.store"); }

private:
    TEMPORARY_FOLDER m_folder;
};

std::unique_ptr<STORE_PLACE> make_sqlite_place() {
    return std::make_unique<SQLITE_PLACE>();
}

#ifdef BIG_TEST_HAS_POSTGRES
/// A schema. The server goes when the test program ends, and all schemas with it.
class POSTGRES_PLACE : public STORE_PLACE {
public:
    std::string address() const override { return m_server.address(m_schema); }
    std::string why_not() const override { return m_server.why_not(); }

private:
    POSTGRES_SERVER& m_server = POSTGRES_SERVER::get();
    std::string const m_schema = m_server.why_not().empty() ? m_server.new_schema() : "";
};

std::unique_ptr<STORE_PLACE> make_postgres_place() {
    return std::make_unique<POSTGRES_PLACE>();
}
#endif

} // namespace

std::vector<STORE_ENGINE> const& store_engines() {
    static std::vector<STORE_ENGINE> const s_engines = {
        {"Sqlite", make_sqlite_place},
#ifdef BIG_TEST_HAS_POSTGRES
        {"Postgres", make_postgres_place},
#endif
    };
    return s_engines;
}
