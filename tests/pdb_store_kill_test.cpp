// Stores whose program is killed while it saves. What was acknowledged is there; a transaction is
// there whole or not at all. With BIG_FAULTS=large in the environment ten thousand programs die.

#include "pdb_store_sys.h"

#include "big_sys.h"
#include "fault_campaign.h"
#include "store_places.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

constexpr int VALUES = 8;

BIG_TIME ps(long long count) {
    return BIG_TIME(count, BIG_TIME::UNIT_PS);
}

std::string value_name(int value) {
    return "path/" + std::to_string(value);
}

/// A transaction: every value and every element is its number, and so is the size of the array.
void save(PDB_STORE& store, long long number) {
    store.transaction([&] {
        for (int i = 0; i < VALUES; ++i)
            store.put(value_name(i), ps(number));
        std::vector<BIG_TIME> const elements(static_cast<std::size_t>(number % 900), ps(number));
        store.put_array("arrivals", elements.data(), elements.size());
        store.put("only/" + std::to_string(number), ps(number));
        store.erase("only/" + std::to_string(number - 50));
    });
}

/// The number of the last transaction in a store; 0 for none. Fails the test when the store holds
/// anything but just that transaction.
long long last_saved(std::string const& address) {
    PDB_STORE store(address);
    std::string problems;
    EXPECT_TRUE(store.check([&](std::string const& problem) { problems += problem + '\n'; }))
        << problems;
    BIG_TIME first;
    if (!store.get(value_name(0), first)) {
        store.list({}, [](PDB_STORE_ENTRY const& entry) { ADD_FAILURE() << entry.name; });
        return 0;
    }
    long long const number = first.get_time_value();
    for (int i = 1; i < VALUES; ++i) {
        BIG_TIME time;
        EXPECT_TRUE(store.get(value_name(i), time));
        EXPECT_EQ(time.get_time_value(), number) << value_name(i);
    }
    std::vector<BIG_TIME> elements;
    EXPECT_TRUE(store.get_array("arrivals", elements));
    EXPECT_EQ(static_cast<long long>(elements.size()), number % 900);
    for (BIG_TIME const& element : elements)
        EXPECT_EQ(element.get_time_value(), number);
    long long count = 0;
    store.for_each<BIG_TIME>("only/", [&](std::string const& name, BIG_TIME const& time) {
        ++count;
        EXPECT_EQ(name, "only/" + std::to_string(time.get_time_value()));
        EXPECT_GT(time.get_time_value(), number - 50);
        EXPECT_LE(time.get_time_value(), number);
    });
    EXPECT_EQ(count, std::min(number, 50LL));
    return number;
}

/// A program that saves transaction after transaction, and tells the number of each that has been
/// acknowledged through a pipe.
class SAVING_PROGRAM {
public:
    SAVING_PROGRAM(std::string const& address, long long first) {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        m_process = fork();
        if (m_process == 0) {
            close(ends[0]);
            run(address, first, ends[1]);
        }
        close(ends[1]);
        m_acknowledged = ends[0];
    }
    SAVING_PROGRAM(SAVING_PROGRAM const&) = delete;
    SAVING_PROGRAM& operator=(SAVING_PROGRAM const&) = delete;

    /// Waits until the program has opened the store, so that it dies while it saves.
    void wait_until_open() { last_number(1); }

    /// Kills the program. Returns the last number that it told; 0 when it told none.
    long long kill_it() {
        ::kill(m_process, SIGKILL);
        int status = 0;
        waitpid(m_process, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself: " << status;
        long long const last = last_number(INT64_MAX);
        close(m_acknowledged);
        return last;
    }

private:
    [[noreturn]] static void run(std::string const& address, long long number, int told) {
        try {
            PDB_STORE store(address);
            for (long long acknowledged = 0;; acknowledged = number++) {
                if (write(told, &acknowledged, sizeof acknowledged) != sizeof acknowledged)
                    _exit(2);
                save(store, number);
            }
        } catch (std::exception const& error) {
            std::cerr << error.what() << '\n';
        }
        _exit(1);
    }

    /// Reads so many numbers, or all that come. Returns the last one.
    long long last_number(std::int64_t count) {
        long long number = 0;
        while (count-- > 0 && read(m_acknowledged, &number, sizeof number) == sizeof number) {
        }
        return number;
    }

    pid_t m_process = -1;
    int m_acknowledged = -1;
};

TEST(PdbStoreKilled, EveryAcknowledgedSaveIsThereAndNoHalfOne) {
    constexpr unsigned SEED = 711;
    int const programs = campaign_size(200, 10000);
    std::cout << programs << " programs, seed " << SEED << '\n';
    std::mt19937 random(SEED);
    TEMPORARY_FOLDER const folder;
    std::string const address = folder.path("values.store");
    long long last = 0;
    long long lost_at_creation = 0;
    for (int i = 0; i < programs && !testing::Test::HasFailure(); ++i) {
        bool const is_new = i % 10 == 0;
        if (is_new) {
            std::filesystem::remove(address);
            std::filesystem::remove(address + "-journal");
            last = 0;
        }
        SAVING_PROGRAM program(address, last + 1);
        if (!is_new)
            program.wait_until_open();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 8000));
        long long const acknowledged = std::max(program.kill_it(), last);
        lost_at_creation += !std::filesystem::exists(address);
        SCOPED_TRACE("program " + std::to_string(i));
        long long const saved = last_saved(address);
        EXPECT_GE(saved, acknowledged);
        EXPECT_LE(saved, acknowledged + 1);
        last = saved;
    }
    std::cout << lost_at_creation << " died before there was a store, the last one at save " << last
              << '\n';
}

} // namespace
