// What the times of bytes tell: answers that begin too soon, lines that are no wire, adapters.
#include "link/linetime.h"

#include "support/headless/linktest.h"

namespace {

// Sends "F" and hears chunks of so many bytes at these times after it.
class LineTime : public LinkTest {
 protected:
  struct Chunk {
    std::int64_t afterUs;
    std::size_t bytes;
  };
  void Hear(const std::vector<Chunk>& chunks) {
    if (!MSComm1.PortOpen) {
      ASSERT_TRUE(OpenCommPort(27, 0));
    }
    MSComm1.Output("F");
    const std::int64_t sentUs = NowUs();
    for (const Chunk& chunk : chunks)
      DeliverAt("COM1", sentUs + chunk.afterUs, Bytes(chunk.bytes, 1));
    AdvanceUs(100'000);
    std::size_t heard = 0;
    for (const Chunk& chunk : chunks) heard += chunk.bytes;
    ASSERT_EQ(MSComm1.heard.size(), heard);
  }
  static std::vector<Chunk> ByteByByte(std::int64_t firstUs, int bytes) {
    std::vector<Chunk> chunks;
    for (int i = 0; i < bytes; ++i) chunks.push_back({firstUs + 1042 * i, 1});
    return chunks;
  }
};

TEST_F(LineTime, AnswerOnAWireBeginsAfterTwoByteTimes) {
  Hear(ByteByByte(2084, 27));
  EXPECT_TRUE(CameByWire(MSComm1));
  EXPECT_FALSE(CameInLumps(MSComm1));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
}

TEST_F(LineTime, UnitThatRunsFiveInAHundredFasterIsNotTooSoon) {
  Hear(ByteByByte(1980, 27));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
}

TEST_F(LineTime, SlowUnitIsNotTooSoon) {
  Hear(ByteByByte(40'000, 27));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
}

// The last byte of the answer before follows the one that completed it by a byte time at most.
TEST_F(LineTime, ByteOfTheAnswerBeforeIsTooSoon) {
  for (std::int64_t firstUs : {30, 500, 1042}) {
    Hear(ByteByByte(firstUs, 28));
    EXPECT_TRUE(BeganTooSoon(MSComm1)) << firstUs;
  }
}

TEST_F(LineTime, AnswerAtOnceIsOfNoWireAndNeverTooSoon) {
  Hear({{30, 27}});
  EXPECT_FALSE(CameByWire(MSComm1));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
  Hear({{30, 9}, {90, 9}, {150, 9}});
  EXPECT_FALSE(BeganTooSoon(MSComm1));
}

TEST_F(LineTime, AdapterDeliversAWiresBytesInLumps) {
  Hear({{16'000, 14}, {32'000, 13}});
  EXPECT_TRUE(CameByWire(MSComm1));
  EXPECT_TRUE(CameInLumps(MSComm1));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
  Hear({{10'400, 8}, {18'750, 8}, {27'100, 8}, {33'300, 3}});
  EXPECT_TRUE(CameInLumps(MSComm1));
}

TEST_F(LineTime, EveryOutputStartsItsOwnTimes) {
  Hear(ByteByByte(500, 28));
  Hear(ByteByByte(2084, 27));
  EXPECT_FALSE(BeganTooSoon(MSComm1));
  MSComm1.Output("F");
  EXPECT_EQ(MSComm1.times.arrivals, 0);
  EXPECT_FALSE(BeganTooSoon(MSComm1));
}

TEST_F(LineTime, DroppedInputIsNeitherUnreadNorToldLater) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  Arrive("abc");
  DeliverAt("COM1", NowUs(), {'d'});
  MSComm1.DropInput();
  Yield();
  EXPECT_TRUE(MSComm1.unread.empty());
  EXPECT_EQ(MSComm1.heard, BytesOf("abc"));
}

}  // namespace
