// Lists of singles: bytes in, bytes out, and the rule of counting.
#include "core/singles.h"

#include <bit>

#include "filestest.h"
#include "platform/failure.h"

namespace {

using Singles = FilesTest;

std::uint32_t Bits(float single) { return std::bit_cast<std::uint32_t>(single); }

}  // namespace

TEST_F(Singles, BytesAreLittleEndian) {
  const float singles[] = {1.0F, -2.5F, 14.64F};
  EXPECT_EQ(BytesOfSingles(singles), (std::vector<std::uint8_t>{0, 0, 0x80, 0x3F, 0, 0, 0x20, 0xC0,
                                                                0x71, 0x3D, 0x6A, 0x41}));
}

TEST_F(Singles, CountIsOneMoreThanTheFileHas) {
  for (std::size_t bytes = 0; bytes <= 2051; ++bytes) {
    PutFile("a.bin", std::vector<std::uint8_t>(bytes, 1));
    EXPECT_EQ(ReadRawSingles("a.bin"), static_cast<int>(bytes / 4 + 1)) << bytes;
  }
}

TEST_F(Singles, From513OnItIsASubscriptFailure) {
  for (std::size_t bytes : {2052U, 2053U, 2056U, 100000U}) {
    PutFile("a.bin", std::vector<std::uint8_t>(bytes, 1));
    try {
      ReadRawSingles("a.bin");
      ADD_FAILURE() << bytes;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number, FailureSubscript);
    }
  }
}

TEST_F(Singles, PositionsPastTheEndShowTheFileBefore) {
  PutFile("a.bin", BinBytes({1, 2, 3, 4, 5}));
  PutFile("b.bin", BinBytes({6, 7}));
  ReadRawSingles("a.bin");
  ReadRawSingles("b.bin");
  EXPECT_EQ(std::vector<float>(RawSingles.begin(), RawSingles.begin() + 6),
            (std::vector<float>{6, 7, 3, 4, 5, 0}));
}

TEST_F(Singles, PartOfASingleLeavesThePositionAlone) {
  PutFile("a.bin", BinBytes({1, 2}));
  ReadRawSingles("a.bin");
  PutFile("b.bin", {0, 0, 0x40, 0x40, 9, 9, 9});
  ReadRawSingles("b.bin");
  EXPECT_EQ(RawSingles[0], 3);
  EXPECT_EQ(RawSingles[1], 2);
}

TEST_F(Singles, WhatIsNoNumberComesThroughBitByBit) {
  for (std::uint32_t bits : {0x7F800001U, 0xFFC12345U, 0x7F800000U, 0x80000000U, 0x00000001U}) {
    const float single = std::bit_cast<float>(bits);
    PutFile("a.bin", BytesOfSingles(std::array{single}));
    EXPECT_EQ(Bits(ReadSingles("a.bin").at(0)), bits);
  }
}
