// Stores on disks that fail: calls that return errors, lost power, cut and changed files. Whatever
// happens, what was saved is there, and nothing else is ever taken for it. With BIG_FAULTS=large in
// the environment every test does more.

#include "pdb_store_sys.h"

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "fault_campaign.h"
#include "faulty_files.h"
#include "format_1_writer.h"
#include "store_places.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// ------------------------------------------------------------------------------------------------
// The work of a program
// ------------------------------------------------------------------------------------------------

BIG_TIME ps(long long count) {
    return BIG_TIME(count, BIG_TIME::UNIT_PS);
}

void put_times(PDB_STORE& store, std::string const& prefix, int count, long long first) {
    for (int i = 0; i < count; ++i)
        store.put(prefix + std::to_string(i), ps(first + i));
}

void put_array(PDB_STORE& store, std::string const& name, int count, long long first) {
    std::vector<BIG_TIME> elements;
    for (int i = 0; i < count; ++i)
        elements.push_back(ps(first + i));
    store.put_array(name, elements.data(), elements.size());
}

/// What the store holds before the work.
void seed(PDB_STORE& store) {
    put_times(store, "delay/", 20, 100);
    put_array(store, "arrivals", 700, 1); // more than a page
    store.put("clock", BIG_FREQUENCY(400));
}

/// Saves, each one a transaction.
std::vector<std::function<void(PDB_STORE&)>> saves() {
    return {
        [](PDB_STORE& store) { store.put("delay/3", ps(-3)); },
        [](PDB_STORE& store) { store.put("duty", BIG_FRACTION(1, 3)); }, // a new class
        [](PDB_STORE& store) {
            store.transaction([&] {
                put_array(store, "arrivals", 300, 7000);
                store.erase("delay/1");
                store.rename("clock", "clock/main");
                put_times(store, "more/", campaign_size(30, 3000), 1);
            });
        },
        [](PDB_STORE& store) { // the file does not shrink, but its pages become free
            store.transaction([&] {
                store.erase("arrivals");
                for (int i = 0; i < 15; ++i)
                    store.erase("more/" + std::to_string(i));
            });
        },
    };
}

/// A folder whose one file is a store, and which is brought back to what it held before.
class STORE_FOLDER {
public:
    std::string path() const { return m_folder.path("values.store"); }
    std::string folder() const { return m_folder.path(); }

    /// Puts these files into the folder, and removes every other one.
    void restore(DISK const& disk) const {
        for (auto const& entry : std::filesystem::directory_iterator(folder()))
            std::filesystem::remove(entry.path());
        for (auto const& [file, content] : disk)
            write_content(file, content);
    }

private:
    TEMPORARY_FOLDER m_folder;
};

/// A store, and what it holds before the saves and after each.
class STORE_WITH_HISTORY : public STORE_FOLDER {
public:
    STORE_WITH_HISTORY() {
        PDB_STORE store(path());
        seed(store);
        m_dumps.push_back(dump_of(store));
        m_files.push_back(content_of(path()));
        for (auto const& save : saves()) {
            save(store);
            m_dumps.push_back(dump_of(store));
            m_files.push_back(content_of(path()));
        }
    }

    /// What is in the store after so many saves.
    std::string const& dump(std::size_t saves) const { return m_dumps[saves]; }

    /// The folder after so many saves.
    DISK disk(std::size_t saves) const { return {{path(), m_files[saves]}}; }

private:
    std::vector<std::string> m_files;
    std::vector<std::string> m_dumps;
};

/// A store of format 1, and what it holds when it has been migrated.
class OLD_STORE : public STORE_FOLDER {
public:
    OLD_STORE() {
        int const count = campaign_size(4, 3000);
        int const array_size = campaign_size(7, 30000); // of many chunks
        {
            FORMAT_1_WRITER writer(path());
            writer.run("BEGIN");
            writer.add_class(0xd16780d1);
            for (int i = 0; i < count; ++i)
                writer.put("delay/" + std::to_string(i),
                           {static_cast<CELL>(100 + i), BIG_TIME::UNIT_PS});
            std::vector<std::vector<CELL>> elements;
            for (int i = 0; i < array_size; ++i)
                elements.push_back({static_cast<CELL>(1 + i), BIG_TIME::UNIT_PS});
            writer.put_array("arrivals", elements);
            writer.add_class(0xa7a44bef);
            writer.put("duty", {1, 3, std::bit_cast<CELL>(1.0 / 3)});
            writer.run("COMMIT");
        }
        m_content = content_of(path());

        TEMPORARY_FOLDER const folder;
        PDB_STORE store(folder.path("same.store"));
        put_times(store, "delay/", count, 100);
        put_array(store, "arrivals", array_size, 1);
        store.put("duty", BIG_FRACTION(1, 3));
        m_migrated = dump_of(store);
    }

    std::string const& content() const { return m_content; }
    DISK disk() const { return {{path(), m_content}}; }
    /// The dump of a store of the present format that was given the same.
    std::string const& migrated() const { return m_migrated; }

private:
    std::string m_content;
    std::string m_migrated;
};

PDB_STORE_OPTIONS on_faulty_files() {
    PDB_STORE_OPTIONS options;
    options.vfs = FAULTY_FILES::NAME;
    return options;
}

// ------------------------------------------------------------------------------------------------
// Calls that fail
// ------------------------------------------------------------------------------------------------

struct FAILING_CALL {
    char const* name;
    FILE_CALL call;
    FILE_FAULT fault;
    bool is_last;
};

class PdbStoreFaults : public testing::TestWithParam<FAILING_CALL> {};

TEST_P(PdbStoreFaults, AFailedSaveIsReportedAndTheOldContentStays) {
    FAILING_CALL const& failing = GetParam();
    STORE_WITH_HISTORY const history;
    FAULTY_FILES files;
    auto const steps = saves();
    for (std::size_t save = 0; save < steps.size(); ++save) {
        int failures = 0;
        for (int number = 1;; ++number) {
            SCOPED_TRACE("save " + std::to_string(save) + ", call " + std::to_string(number));
            history.restore(history.disk(save));
            files.fail(failing.call, number, failing.fault, failing.is_last);
            bool has_reported = false;
            try {
                PDB_STORE store(history.path(), on_faulty_files());
                try {
                    steps[save](store);
                } catch (PDB_STORE_ERROR const& error) {
                    has_reported = true;
                    EXPECT_EQ(error.kind(), PDB_STORE_ERROR::SYSTEM) << error.what();
                    // It refuses all further work, and says why.
                    try {
                        store.put("delay/3", ps(4));
                        ADD_FAILURE() << "it still saves";
                    } catch (PDB_STORE_ERROR const& later) {
                        std::string const reason(error.what());
                        EXPECT_EQ(later.kind(), PDB_STORE_ERROR::FAILED);
                        EXPECT_NE(std::string(later.what())
                                      .find(reason.substr(reason.find(history.path())
                                                          + history.path().size())),
                                  std::string::npos)
                            << later.what();
                    }
                    BIG_TIME time;
                    EXPECT_THROW(store.get("delay/3", time), PDB_STORE_ERROR);
                }
            } catch (PDB_STORE_ERROR const& error) {
                has_reported = true; // it was not even opened
                EXPECT_EQ(error.kind(), PDB_STORE_ERROR::SYSTEM) << error.what();
            }
            bool const has_failed = files.repair();
            std::string const now = checked_dump_of(history.path());
            bool const may_be_saved = !has_reported || failing.fault == FILE_FAULT::TOO_LATE;
            bool const is_saved = may_be_saved && now == history.dump(save + 1);
            EXPECT_EQ(now, history.dump(is_saved || !has_reported ? save + 1 : save));
            failures += has_reported ? 1 : 0;
            if (!has_failed || HasFailure()) {
                EXPECT_FALSE(has_reported && !has_failed);
                break;
            }
        }
        EXPECT_TRUE(failures > 0 || failing.call == FILE_CALL::TRUNCATE); // not every save has one
    }
}

bool has_text(PDB_STORE_ERROR const& error, std::string const& text) {
    return std::string(error.what()).find(text) != std::string::npos;
}

/// Where a file takes its place under another name, that may fail, too.
class PdbStoreNewFileFaults : public testing::TestWithParam<FAILING_CALL> {};

TEST_P(PdbStoreNewFileFaults, AStoreIsMadeWholeOrNotAtAll) {
    FAILING_CALL const& failing = GetParam();
    TEMPORARY_FOLDER const folder;
    std::string const path = folder.path("values.store");
    FAULTY_FILES files;
    int failures = 0;
    for (int number = 1;; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        std::filesystem::remove(path);
        files.fail(failing.call, number, failing.fault, failing.is_last);
        bool has_reported = false;
        try {
            PDB_STORE store(path, on_faulty_files());
        } catch (PDB_STORE_ERROR const& error) {
            has_reported = true;
            EXPECT_EQ(error.kind(), PDB_STORE_ERROR::SYSTEM) << error.what();
            EXPECT_TRUE(failing.call != FILE_CALL::SYNC_FOLDER
                        || has_text(error, ": it is made, but bringing its folder to the disk "))
                << error.what();
        }
        bool const has_failed = files.repair();
        for (auto const& entry : std::filesystem::directory_iterator(folder.path()))
            EXPECT_EQ(entry.path(), path) << "is left behind";
        EXPECT_TRUE(has_reported || std::filesystem::exists(path));
        EXPECT_EQ(checked_dump_of(path), "big-store dump 1\nend 0 33fd75a745e4cb46\n");
        failures += has_reported ? 1 : 0;
        if (!has_failed || HasFailure()) {
            EXPECT_FALSE(has_reported && !has_failed);
            break;
        }
    }
    EXPECT_TRUE(failures > 0 || failing.call == FILE_CALL::TRUNCATE); // there is none
}

TEST_P(PdbStoreNewFileFaults, AnOlderFormatIsMigratedWholeOrNotAtAll) {
    FAILING_CALL const& failing = GetParam();
    OLD_STORE const old;
    FAULTY_FILES files;
    int failures = 0;
    for (int number = 1;; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        old.restore(old.disk());
        files.record();
        files.fail(failing.call, number, failing.fault, failing.is_last);
        bool has_reported = false;
        try {
            PDB_STORE store(old.path(), on_faulty_files());
        } catch (PDB_STORE_ERROR const& error) {
            has_reported = true;
            EXPECT_EQ(error.kind(), PDB_STORE_ERROR::SYSTEM) << error.what();
            EXPECT_TRUE(failing.call != FILE_CALL::SYNC_FOLDER
                        || has_text(error, ": it has the present format now, but "))
                << error.what();
        }
        bool const has_failed = files.repair();
        auto const record = files.recorded();
        bool const has_moved = std::any_of(record.begin(), record.end(), [](FILE_STEP const& step) {
            return step.call == FILE_CALL::RENAME;
        });
        for (auto const& entry : std::filesystem::directory_iterator(old.folder()))
            EXPECT_EQ(entry.path(), old.path()) << "is left behind";
        EXPECT_TRUE(has_reported || has_moved);
        EXPECT_EQ(content_of(old.path()) == old.content(), !has_moved);
        EXPECT_EQ(checked_dump_of(old.path()), old.migrated());
        EXPECT_EQ(checked_dump_of(old.path()), old.migrated()) << "the second time";
        failures += has_reported ? 1 : 0;
        if (!has_failed || HasFailure()) {
            EXPECT_FALSE(has_reported && !has_failed);
            break;
        }
    }
    EXPECT_TRUE(failures > 0 || failing.call == FILE_CALL::TRUNCATE); // there is none
}

constexpr FAILING_CALL FAILING_CALLS[] = {
    {"OpenOnce", FILE_CALL::OPEN, FILE_FAULT::ERROR, false},
    {"OpenAndAllLater", FILE_CALL::OPEN, FILE_FAULT::ERROR, true},
    {"WriteOnce", FILE_CALL::WRITE, FILE_FAULT::ERROR, false},
    {"WriteAndAllLater", FILE_CALL::WRITE, FILE_FAULT::ERROR, true},
    {"DiskFullOnce", FILE_CALL::WRITE, FILE_FAULT::DISK_FULL, false},
    {"DiskFullAndAllLater", FILE_CALL::WRITE, FILE_FAULT::DISK_FULL, true},
    {"ShortWriteOnce", FILE_CALL::WRITE, FILE_FAULT::SHORT_WRITE, false},
    {"ShortWriteAndAllLater", FILE_CALL::WRITE, FILE_FAULT::SHORT_WRITE, true},
    {"SyncOnce", FILE_CALL::SYNC, FILE_FAULT::ERROR, false},
    {"SyncAndAllLater", FILE_CALL::SYNC, FILE_FAULT::ERROR, true},
    {"SyncTooLate", FILE_CALL::SYNC, FILE_FAULT::TOO_LATE, true},
    {"TruncateOnce", FILE_CALL::TRUNCATE, FILE_FAULT::ERROR, false},
    {"TruncateAndAllLater", FILE_CALL::TRUNCATE, FILE_FAULT::ERROR, true},
    {"RemoveOnce", FILE_CALL::REMOVE, FILE_FAULT::ERROR, false},
    {"RemoveAndAllLater", FILE_CALL::REMOVE, FILE_FAULT::ERROR, true},
    {"RemoveTooLate", FILE_CALL::REMOVE, FILE_FAULT::TOO_LATE, true},
};

constexpr FAILING_CALL FAILING_RENAMES[] = {
    {"RenameOnce", FILE_CALL::RENAME, FILE_FAULT::ERROR, false},
    {"RenameAndAllLater", FILE_CALL::RENAME, FILE_FAULT::ERROR, true},
    {"RenameTooLate", FILE_CALL::RENAME, FILE_FAULT::TOO_LATE, true},
    {"SyncFolderOnce", FILE_CALL::SYNC_FOLDER, FILE_FAULT::ERROR, false},
    {"SyncFolderAndAllLater", FILE_CALL::SYNC_FOLDER, FILE_FAULT::ERROR, true},
    {"SyncFolderTooLate", FILE_CALL::SYNC_FOLDER, FILE_FAULT::TOO_LATE, true},
};

std::string name_of(testing::TestParamInfo<FAILING_CALL> const& call) {
    return call.param.name;
}

INSTANTIATE_TEST_SUITE_P(EveryCall, PdbStoreFaults, testing::ValuesIn(FAILING_CALLS), name_of);
INSTANTIATE_TEST_SUITE_P(EveryCall, PdbStoreNewFileFaults, testing::ValuesIn(FAILING_CALLS),
                         name_of);
INSTANTIATE_TEST_SUITE_P(EveryRename, PdbStoreNewFileFaults, testing::ValuesIn(FAILING_RENAMES),
                         name_of);

// ------------------------------------------------------------------------------------------------
// Power loss
// ------------------------------------------------------------------------------------------------

TEST(PdbStorePowerLoss, SavedContentIsThereAndNoHalfTransactionIs) {
    STORE_WITH_HISTORY const history;
    FAULTY_FILES files;
    history.restore(history.disk(0));
    files.record();
    {
        PDB_STORE store(history.path(), on_faulty_files());
        int done = 0;
        for (auto const& save : saves()) {
            save(store);
            files.mark(++done);
        }
    }
    auto const record = files.recorded();
    std::size_t disks = 0;
    std::size_t saved = 0;
    for (std::size_t step = 0; step <= record.size(); ++step) {
        if (step > 0 && record[step - 1].mark)
            saved = static_cast<std::size_t>(*record[step - 1].mark);
        for (DISK const& disk : disks_after_power_loss(history.disk(0), record, step)) {
            history.restore(disk);
            ++disks;
            std::string const now = checked_dump_of(history.path());
            bool const is_next = saved < saves().size() && now == history.dump(saved + 1);
            ASSERT_EQ(now, history.dump(is_next ? saved + 1 : saved)) << "after step " << step;
        }
    }
    std::cout << record.size() << " steps, " << disks << " disks\n";
    EXPECT_GT(disks, record.size());
}

TEST(PdbStorePowerLoss, AnOlderFormatIsThereOrMigratedWhole) {
    OLD_STORE const old;
    FAULTY_FILES files;
    old.restore(old.disk());
    files.record();
    {
        PDB_STORE const store(old.path(), on_faulty_files());
        files.mark(1);
    }
    auto const record = files.recorded();
    std::size_t disks = 0;
    std::size_t migrated = 0;
    bool is_open = false;
    for (std::size_t step = 0; step <= record.size(); ++step) {
        is_open = is_open || (step > 0 && record[step - 1].mark);
        for (DISK const& disk : disks_after_power_loss(old.disk(), record, step)) {
            ASSERT_EQ(disk.count(old.path()), 1U) << "after step " << step;
            bool const is_migrated = disk.at(old.path()) != old.content();
            ASSERT_TRUE(is_migrated || !is_open) << "after step " << step;
            old.restore(disk);
            ++disks;
            migrated += is_migrated ? 1 : 0;
            ASSERT_EQ(checked_dump_of(old.path()), old.migrated()) << "after step " << step;
        }
    }
    std::cout << record.size() << " steps, " << disks << " disks, " << migrated << " migrated\n";
    EXPECT_GT(disks, record.size());
    EXPECT_GT(migrated, 0U);
}

TEST(PdbStorePowerLoss, AChangedByteInWhatTakesTheLastSaveBackIsAnError) {
    STORE_WITH_HISTORY const history;
    FAULTY_FILES files;
    history.restore(history.disk(2));
    files.record();
    {
        PDB_STORE store(history.path(), on_faulty_files());
        saves()[2](store);
    }
    auto const record = files.recorded();
    // The power fails just before the journal goes.
    std::size_t steps = 0;
    while (record[steps].call != FILE_CALL::REMOVE)
        ++steps;
    DISK const disk = disks_after_power_loss(history.disk(2), record, steps).front();
    std::string const path = history.path() + "-journal";
    ASSERT_EQ(disk.count(path), 1U);
    constexpr unsigned SEED = 4242;
    std::mt19937 random(SEED);
    std::size_t const size = disk.at(path).size();
    std::cout << size << " bytes, seed " << SEED << '\n';
    std::size_t const stride = static_cast<std::size_t>(campaign_size(101, 1));
    for (std::size_t at = 0; at < size; at += at < 600 ? 1 : stride) {
        DISK changed = disk;
        char& byte = changed.at(path)[at];
        byte = static_cast<char>(byte ^ static_cast<char>(1 + random() % 255));
        history.restore(changed);
        try {
            ASSERT_EQ(checked_dump_of(history.path()), history.dump(2)) << "byte " << at;
        } catch (PDB_STORE_ERROR const& error) {
            ASSERT_EQ(error.kind(), PDB_STORE_ERROR::DAMAGED) << "byte " << at;
        }
    }
    // The same for a journal that was cut behind its header.
    for (std::size_t left = 36; left < size; left += stride) {
        DISK changed = disk;
        changed.at(path).resize(left);
        history.restore(changed);
        try {
            ASSERT_EQ(checked_dump_of(history.path()), history.dump(2)) << left << " bytes";
        } catch (PDB_STORE_ERROR const& error) {
            ASSERT_EQ(error.kind(), PDB_STORE_ERROR::DAMAGED) << left << " bytes";
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Files that are not what was written
// ------------------------------------------------------------------------------------------------

/// A store with a little of everything.
class SMALL_STORE {
public:
    SMALL_STORE() {
        {
            PDB_STORE store(path());
            put_times(store, "delay/", 4, 100);
            store.put("clock", BIG_FREQUENCY(400));
            store.put("duty", BIG_FRACTION(1, 3));
            put_array(store, "arrivals", 9, 1);
            put_times(store, "gone/", 60, 1);
            for (int i = 0; i < 60; ++i)
                store.erase("gone/" + std::to_string(i));
        }
        m_content = content_of(path());
        m_dump = checked_dump_of(path());
    }

    std::string path() const { return m_folder.path("values.store"); }
    std::string const& content() const { return m_content; }

    /// Whether reading everything tells what was saved, or throws PDB_STORE_ERROR.
    bool is_right_or_refused(PDB_STORE_OPTIONS::ACCESS access) const {
        PDB_STORE_OPTIONS options;
        options.access = access;
        try {
            PDB_STORE store(path(), options);
            // Each by its name, so that one that does not find its page does not hide the others.
            bool is_right = true;
            auto const read = [&](auto const& get) {
                try {
                    is_right = get() && is_right;
                } catch (PDB_STORE_ERROR const&) {
                }
            };
            for (int i = 0; i < 4; ++i)
                read([&] {
                    BIG_TIME time;
                    return store.get("delay/" + std::to_string(i), time)
                           && time.get_time_value() == 100 + i
                           && time.get_time_unit() == BIG_TIME::UNIT_PS;
                });
            read([&] {
                BIG_FREQUENCY clock;
                return store.get("clock", clock) && clock.get_value() == 2.5e9;
            });
            read([&] {
                BIG_FRACTION duty;
                return store.get("duty", duty) && duty == BIG_FRACTION(1, 3);
            });
            read([&] {
                std::vector<BIG_TIME> arrivals;
                bool is_same = store.get_array("arrivals", arrivals) && arrivals.size() == 9;
                for (std::size_t i = 0; is_same && i < arrivals.size(); ++i)
                    is_same = arrivals[i].get_time_value() == static_cast<long long>(i) + 1;
                return is_same;
            });
            return is_right && dump_of(store) == m_dump;
        } catch (PDB_STORE_ERROR const&) {
            return true;
        }
    }

private:
    TEMPORARY_FOLDER m_folder;
    std::string m_content;
    std::string m_dump;
};

TEST(PdbStoreDamage, AChangedByteIsAnErrorOrChangesNothing) {
    SMALL_STORE const store;
    ASSERT_TRUE(store.is_right_or_refused(PDB_STORE_OPTIONS::READ));
    constexpr unsigned SEED = 20180;
    std::cout << store.content().size() << " bytes, seed " << SEED << '\n';
    std::mt19937 random(SEED);
    std::string content = store.content();
    std::fstream file(store.path(), std::ios::in | std::ios::out | std::ios::binary);
    auto const put = [&](std::size_t at, char byte) {
        file.seekp(static_cast<std::streamoff>(at));
        file.put(byte).flush();
    };
    std::size_t const stride = static_cast<std::size_t>(campaign_size(53, 1));
    for (std::size_t at = 0; at < content.size(); at += at < 100 ? 1 : stride) {
        char const mask = static_cast<char>(1 + random() % 255);
        put(at, static_cast<char>(content[at] ^ mask));
        ASSERT_TRUE(store.is_right_or_refused(PDB_STORE_OPTIONS::READ))
            << "byte " << at << ", changed by " << static_cast<int>(mask);
        put(at, content[at]);
    }
    EXPECT_TRUE(store.is_right_or_refused(PDB_STORE_OPTIONS::READ_WRITE));
}

TEST(PdbStoreDamage, ACutFileIsAnError) {
    SMALL_STORE const store;
    std::size_t const stride = static_cast<std::size_t>(campaign_size(53, 1));
    for (std::size_t size = 0; size < store.content().size(); size += size < 100 ? 1 : stride) {
        write_content(store.path(), std::string_view(store.content()).substr(0, size));
        EXPECT_THROW(checked_dump_of(store.path()), PDB_STORE_ERROR) << size << " bytes left";
        if (HasFailure())
            return;
        ASSERT_TRUE(store.is_right_or_refused(PDB_STORE_OPTIONS::READ)) << size << " bytes left";
    }
}

} // namespace
