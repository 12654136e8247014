#ifndef STORE_SQLITE_FORMAT_H
#define STORE_SQLITE_FORMAT_H

/// @file
/// A store in an SQLite file: what the file says that it is, and how one is made.

#include "engine.h"
#include "sqlite_database.h"

#include <memory>
#include <string>

/// "BIGS", the application id in the file's header.
constexpr std::uint32_t STORE_APPLICATION_ID = 0x42494753;
/// The user version in the file's header.
constexpr std::uint32_t STORE_FORMAT = 2;

/// The format in the header of an SQLite file; 0 for anything else.
std::uint32_t format_in(std::string const& header);

/// Makes a store without classes in a new file beside another.
///
/// @param path the file that it is to become
/// @param temporary_path receives the path of the new file
std::unique_ptr<SQLITE_DATABASE> make_store_file(std::string const& path,
                                                 std::string const& shown_as,
                                                 PDB_STORE_OPTIONS const& options,
                                                 std::string& temporary_path);

/// Removes a file that make_store_file() made, and its journal.
void remove_store_file(std::string const& temporary_path);

/// The engine over an open file of the present format.
std::unique_ptr<ENGINE> engine_over(std::unique_ptr<SQLITE_DATABASE> database);

/// Reads the directory of classes, which is the same in every format, and verifies it.
std::vector<STORED_CLASS> read_classes(SQLITE_DATABASE& database, STATEMENT& directory);
/// The text of the statement for that.
extern char const* const SELECT_CLASSES;

/// The names of the columns of a class's members, each behind a comma, with the readable ones of
/// doubles left out.
std::string member_columns(STORED_CLASS const& stored);
/// Reads the cells of a row from column `first` on.
void read_cells(STORED_CLASS const& stored, SQLITE_DATABASE& database, STATEMENT& row, int first,
                CELL* cells);

/// Brings a store of format 1 to the present format: on a copy, which is checked and then takes the
/// place of the original. Does nothing when another program has done it meanwhile.
void migrate_from_format_1(std::string const& path, std::string const& shown_as,
                           PDB_STORE_OPTIONS const& options, CLASS_CHECK const& check);

#endif
