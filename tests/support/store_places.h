#ifndef STORE_PLACES_H
#define STORE_PLACES_H

/// @file
/// Where tests keep their stores: a file in a folder of its own, or whatever else an engine has.

#include <memory>
#include <ostream>
#include <string>
#include <vector>

/// A place for one store, which is empty at first and gone with the object.
class STORE_PLACE {
public:
    virtual ~STORE_PLACE() = default;
    /// What PDB_STORE is opened with.
    virtual std::string address() const = 0;
    /// Why there is no such place here, so that a test of it is skipped; empty when there is one.
    virtual std::string why_not() const { return ""; }
};

/// An engine that a store may have.
struct STORE_ENGINE {
    std::string name; ///< of letters and digits, for the names of tests
    std::unique_ptr<STORE_PLACE> (*make_place)();
};

inline void PrintTo(STORE_ENGINE const& engine, std::ostream* out) {
    *out << engine.name;
}

/// Every engine of this build.
std::vector<STORE_ENGINE> const& store_engines();

/// A folder of its own for temporary files, in memory where the system has that.
class TEMPORARY_FOLDER {
public:
    TEMPORARY_FOLDER();
    ~TEMPORARY_FOLDER();
    TEMPORARY_FOLDER(TEMPORARY_FOLDER const&) = delete;
    TEMPORARY_FOLDER& operator=(TEMPORARY_FOLDER const&) = delete;

    std::string path() const { return m_path; }
    /// The path of a file in the folder.
    std::string path(std::string const& name) const { return m_path + '/' + name; }

private:
    std::string m_path;
};

#endif
