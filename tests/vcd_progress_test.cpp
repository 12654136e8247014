// The progress that is shown while a dump is read.

#include "progress.h"

#include <array>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

/// What a progress writes, and a clock that stands still until it is told.
class VcdProgress : public testing::Test {
protected:
    VcdProgress() { EXPECT_EQ(::pipe2(m_pipe, O_NONBLOCK), 0); }
    ~VcdProgress() override {
        ::close(m_pipe[0]);
        ::close(m_pipe[1]);
    }

    int terminal() const { return m_pipe[1]; }

    std::string written() {
        std::array<char, 1000> bytes;
        ssize_t const count = ::read(m_pipe[0], bytes.data(), bytes.size());
        return std::string(bytes.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
    }

    PROGRESS::CLOCK::time_point const START{};

private:
    int m_pipe[2];
};

TEST_F(VcdProgress, NothingIsShownInTheFirstSecond) {
    PROGRESS progress(terminal(), "dump", 1000, START);
    progress.show(0, START);
    progress.show(900, START + 999ms);
    progress.erase();
    EXPECT_EQ(written(), "");
}

TEST_F(VcdProgress, PartOfTheFileIsShownAfterwards) {
    PROGRESS progress(terminal(), "dump", 250'000'000, START);
    progress.show(105'000'000, START + 1s);
    EXPECT_EQ(written(), "\r\x1B[Kdump: 42 % of 250 MB");
    progress.show(250'000'000, START + 2s);
    EXPECT_EQ(written(), "\r\x1B[Kdump: 100 % of 250 MB");
}

TEST_F(VcdProgress, LineIsWrittenFiveTimesASecondAtMost) {
    PROGRESS progress(terminal(), "dump", 1000, START);
    progress.show(0, START + 1s);
    EXPECT_NE(written(), "");
    progress.show(500, START + 1199ms);
    EXPECT_EQ(written(), "");
    progress.show(500, START + 1200ms);
    EXPECT_EQ(written(), "\r\x1B[Kdump: 50 % of 0 MB");
}

TEST_F(VcdProgress, BytesAreShownWhereTheSizeIsUnknown) {
    PROGRESS progress(terminal(), "standard input", std::nullopt, START);
    progress.show(12'999'999, START + 1s);
    EXPECT_EQ(written(), "\r\x1B[Kstandard input: 12 MB");
}

TEST_F(VcdProgress, FileThatGrowsHasNoKnownSize) {
    PROGRESS progress(terminal(), "dump", 1'000'000, START);
    progress.show(2'000'000, START + 1s);
    EXPECT_EQ(written(), "\r\x1B[Kdump: 2 MB");
}

TEST_F(VcdProgress, EmptyFileHasNoParts) {
    PROGRESS progress(terminal(), "dump", 0, START);
    progress.show(0, START + 1s);
    EXPECT_EQ(written(), "\r\x1B[Kdump: 0 MB");
}

TEST_F(VcdProgress, LineIsTakenAwayOnceAndAtTheEnd) {
    {
        PROGRESS progress(terminal(), "dump", 1000, START);
        progress.show(0, START + 1s);
        written();
        progress.erase();
        EXPECT_EQ(written(), "\r\x1B[K");
        progress.erase();
        EXPECT_EQ(written(), "");
        progress.show(0, START + 2s);
        written();
    }
    EXPECT_EQ(written(), "\r\x1B[K");
}

TEST_F(VcdProgress, NothingIsShownWithoutATerminal) {
    PROGRESS progress(std::nullopt, "dump", 1000, START);
    progress.show(500, START + 9s);
    progress.erase();
    EXPECT_EQ(written(), "");
}

} // namespace
