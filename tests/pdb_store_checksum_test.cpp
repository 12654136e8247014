// The store's checksum against the rule bit by bit, however it is computed and in whatever pieces.

#include "checksum.h"

#include "crc_by_bits.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

std::string random_bytes(std::size_t size, std::mt19937_64& random) {
    std::string bytes;
    while (bytes.size() < size)
        bytes += static_cast<char>(random());
    return bytes;
}

TEST(StoreChecksum, IsThatOfTheStandard) {
    EXPECT_EQ(CHECKSUM().value(), 0u);
    EXPECT_EQ(CHECKSUM().add("123456789").value(), 0x995dc9bbdf1939fa);
    EXPECT_EQ(CHECKSUM().add(std::string_view()).add("123456789").value(), 0x995dc9bbdf1939fa);
}

TEST(StoreChecksum, OfANumberIsThatOfItsBytes) {
    EXPECT_EQ(CHECKSUM().add(std::uint64_t{0x3132333435363738}).add("9").value(),
              crc_by_bits("123456789"));
}

TEST(StoreChecksum, OfBytesOfEveryLength) {
    std::mt19937_64 random(1);
    for (std::size_t size = 0; size <= 1200; ++size) {
        std::string const bytes = random_bytes(size, random);
        ASSERT_EQ(CHECKSUM().add(bytes).value(), crc_by_bits(bytes)) << size << " bytes";
    }
    for (std::size_t const size : std::initializer_list<std::size_t>{4088, 4096, 32768, 65537}) {
        std::string const bytes = random_bytes(size, random);
        ASSERT_EQ(CHECKSUM().add(bytes).value(), crc_by_bits(bytes)) << size << " bytes";
    }
}

TEST(StoreChecksum, OfEverySingleBit) {
    for (std::size_t const size : std::initializer_list<std::size_t>{1, 8, 16, 17, 200})
        for (std::size_t bit = 0; bit < 8 * size; ++bit) {
            std::string bytes(size, '\0');
            bytes[bit / 8] = static_cast<char>(1 << bit % 8);
            ASSERT_EQ(CHECKSUM().add(bytes).value(), crc_by_bits(bytes)) << size << ' ' << bit;
        }
}

TEST(StoreChecksum, OfBytesInTwoPieces) {
    std::mt19937_64 random(2);
    for (std::size_t const size :
         std::initializer_list<std::size_t>{1, 7, 15, 16, 40, 127, 128, 129, 136, 300}) {
        std::string const bytes = random_bytes(size, random);
        for (std::size_t cut = 0; cut <= size; ++cut)
            ASSERT_EQ(CHECKSUM().add(bytes.substr(0, cut)).add(bytes.substr(cut)).value(),
                      crc_by_bits(bytes))
                << size << " bytes cut at " << cut;
    }
}

TEST(StoreChecksum, OfBytesInManyPieces) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 2000; ++i) {
        CHECKSUM checksum;
        std::string bytes;
        for (auto pieces = random() % 12; pieces > 0; --pieces) {
            std::string const piece =
                random_bytes(random() % (random() % 4 == 0 ? 300 : 30), random);
            checksum.add(piece);
            bytes += piece;
            // Asking in between changes nothing.
            ASSERT_EQ(checksum.value(), crc_by_bits(bytes)) << bytes.size() << " bytes";
        }
    }
}

} // namespace
