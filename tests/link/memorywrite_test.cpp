// Memory writes into the running control unit: records to the byte, refusals, endless retries, and
// the posted write.
#include "platform/headless/script.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

class WriteTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    ASSERT_TRUE(OpenCommPort(27, 0));
  }
  float Write(int index, float count) {
    float result = -1;
    ONFLY(index, count, result);
    return result;
  }
  void ExpectRefusedScreen() {
    EXPECT_TRUE(frmerr.loaded);
    UnloadScreen(frmerr);
  }
};

// ---- records ------------------------------------------------------------------------------------

TEST_F(WriteTest, RecordsAreKnownToTheByte) {
  BinImage[0] = 0xF8;
  BinImage[16] = 0x0A;
  BinImage[244] = 0x12;
  BinImage[245] = 0x34;
  BinImage[256] = 0xFF;
  BinImage[511] = 1;
  EXPECT_EQ(OnflyRecord(0, 1), "S104B600F84D");
  EXPECT_EQ(OnflyRecord(16, 1), "S104B6100A2B");
  EXPECT_EQ(OnflyRecord(244, 2), "S105B6F412340A");
  EXPECT_EQ(OnflyRecord(256, 1), "S104B700FF45");
  EXPECT_EQ(OnflyRecord(511, 1), "S104B7FF0144");
  EXPECT_EQ(OnflyRecord(256, 2), "S105B700FF0044");
}

TEST_F(WriteTest, RecordRunsOverThePageEndAtIndex255) {
  BinImage[255] = 0x11;
  BinImage[256] = 0x22;
  EXPECT_EQ(OnflyRecord(255, 2), "S105B6FF112212");
}

TEST_F(WriteTest, EveryRecordAddsUpToAllOnes) {
  for (int i = 0; i < 512; ++i)
    BinImage[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(i * 37 % 256);
  for (int count : {1, 2})
    for (int index = 0; index + count <= 512; ++index) {
      const std::string record = OnflyRecord(index, count);
      ASSERT_EQ(record.size(), static_cast<std::size_t>(10 + 2 * count));
      int sum = 0;
      for (std::size_t i = 2; i < record.size(); i += 2)
        sum += std::stoi(record.substr(i, 2), nullptr, 16);
      ASSERT_EQ(sum & 255, 255) << record;
    }
}

TEST_F(WriteTest, ByteThatIsNoneOrLiesOutsideTheImageIsRefusedUnsent) {
  BinImage[5] = 256;
  BinImage[6] = -1;
  struct Case {
    int index;
    float count;
  };
  for (const Case& c :
       {Case{5, 1}, Case{4, 2}, Case{6, 1}, Case{512, 1}, Case{511, 2}, Case{-1, 1}}) {
    WaitCount = 4;
    EXPECT_EQ(Write(c.index, c.count), 1) << c.index;
    EXPECT_EQ(OnflyFault, 4);
    ExpectRefusedScreen();
  }
  EXPECT_EQ(Sent(), "");
}

// ---- the exchange -------------------------------------------------------------------------------

TEST_F(WriteTest, AcceptedWriteSendsOpeningRecordAndEnd) {
  BinImage[16] = 0x0A;
  AnswerInTurn({{2, "AX"}, {12, "PN"}, {10, "PC"}});
  EXPECT_EQ(Write(16, 1), 0);
  EXPECT_EQ(Sent(), "P2S104B6100A2BS9030000FC");
  EXPECT_FALSE(frmerr.loaded);
  EXPECT_EQ(MSComm1.RThreshold, 2);
  EXPECT_EQ(MSComm1.InputLen, 0);
}

TEST_F(WriteTest, RecordIsOneWriteAndTheEndRecordIsTen) {
  std::vector<std::size_t> sizes;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    sizes.push_back(bytes.size());
    if (sizes.size() == 2) DeliverAt("COM1", nowUs + 1000, {'A', 'X'});
    if (sizes.size() == 3) DeliverAt("COM1", nowUs + 1000, {'P', 'N'});
    if (sizes.size() == 13) DeliverAt("COM1", nowUs + 1000, {'P', 'C'});
  };
  EXPECT_EQ(Write(16, 1), 0);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 1, 12, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST_F(WriteTest, BytesOfTheGpoWordBelongToTheirScreen) {
  for (int index : {243, 244, 245, 246}) {
    AnswerInTurn({{2, "AX"}, {12, "PN"}, {10, "PC"}});
    EXPECT_EQ(Write(index, 1), index == 244 || index == 245 ? 2 : 0);
  }
}

struct Refusal {
  std::vector<std::string> replies;
  float fault;
  bool prom;
};

TEST_F(WriteTest, RefusalLeavesItsFaultAndShowsTheScreen) {
  const Refusal refusals[] = {{{"BX"}, 11, false},
                              {{"AV"}, 13, true},
                              {{"AX", "PR"}, 12, false},
                              {{"AX", "PC"}, 12, false},
                              {{"AX", "AN"}, 12, false},
                              {{"AX", "PN", "PN"}, 13, false},
                              {{"AX", "PN", "AC"}, 13, false}};
  for (const Refusal& refusal : refusals) {
    std::vector<Scripted> script;
    const std::size_t lengths[] = {2, 12, 10};
    for (std::size_t i = 0; i < refusal.replies.size(); ++i)
      script.push_back({lengths[i], refusal.replies[i]});
    AnswerInTurn(script);
    OnflyFault = 0;
    EXPECT_EQ(Write(16, 1), 1);
    EXPECT_EQ(OnflyFault, refusal.fault);
    ExpectRefusedScreen();
    if (refusal.prom) {
      EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
    }
  }
}

TEST_F(WriteTest, SilentUnitIsAskedAgainUntilItAnswers) {
  AnswerInTurn({{6, "AX"}, {36, "PN"}, {20, "PC"}});
  EXPECT_EQ(Write(16, 1), 0);
  const std::string record = OnflyRecord(16, 1);
  EXPECT_EQ(Sent(), "P2P2P2" + record + record + record + "S9030000FCS9030000FC");
}

TEST_F(WriteTest, RepeatedRecordIsAnsweredAsOftenAsItWasSent) {
  AnswerInTurn({{2, "AX"}, {24, "PN"}, {10, "PN"}, {10, "PC"}});
  EXPECT_EQ(Write(16, 1), 0) << "the second answer comes behind the end record";
  AnswerInTurn({{2, "AX"}, {24, "PN"}, {10, "PNPN"}});
  EXPECT_EQ(Write(16, 1), 1) << "but not a third";
  EXPECT_EQ(OnflyFault, 13);
  ExpectRefusedScreen();
}

// As an adapter does that hands over what it has, wherever an answer ends.
TEST_F(WriteTest, AnswerThatIsCutBehindALateOneIsPutTogether) {
  std::size_t heard = 0;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    heard += bytes.size();
    if (heard == 4) DeliverAt("COM1", nowUs + 1000, BytesOf("AX"));
    if (heard == 16) DeliverAt("COM1", nowUs + 1000, BytesOf("AXP"));
    if (heard == 16) DeliverAt("COM1", nowUs + 2000, BytesOf("N"));
    if (heard == 26) DeliverAt("COM1", nowUs + 1000, BytesOf("PC"));
  };
  EXPECT_EQ(Write(16, 1), 0);
  EXPECT_FALSE(frmerr.loaded);
  EXPECT_EQ(Sent(), "P2P2" + OnflyRecord(16, 1) + "S9030000FC");
}

TEST_F(WriteTest, EachRetryWaitsItsOwnLimit) {
  std::vector<std::int64_t> times;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    if (bytes[0] == 'P' || bytes.size() > 1) times.push_back(nowUs);
    if (times.size() == 2 && bytes[0] == '2') DeliverAt("COM1", nowUs + 1, {'A', 'X'});
    if (times.size() == 5) MonitorStop = 1;
  };
  EXPECT_EQ(Write(16, 1), 1);
  ASSERT_EQ(times.size(), 5u);
  EXPECT_NEAR(static_cast<double>(times[1] - times[0]), 328578.0 * PassMicroseconds + 20000, 100);
  EXPECT_NEAR(static_cast<double>(times[3] - times[2]), 10000.0 * PassMicroseconds, 100);
}

// What was counted when each part is sent for the second time.
TEST_F(WriteTest, EachRetryFindsTheCounterAtItsLimit) {
  int openings = 0, records = 0, ends = 0;
  std::vector<float> counted;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    int* sent = bytes.size() > 1  ? &records
                : bytes[0] == 'P' ? &openings
                : bytes[0] == 'S' ? &ends
                                  : nullptr;
    if (sent && ++*sent == 2) counted.push_back(WaitCount);
    if (openings == 2 && bytes[0] == '2') DeliverAt("COM1", nowUs + 1, {'A', 'X'});
    if (sent == &records && records == 2) DeliverAt("COM1", nowUs + 1, {'P', 'N'});
    if (ends == 2) MonitorStop = 1;
  };
  EXPECT_EQ(Write(16, 1), 1);
  ASSERT_EQ(counted.size(), 3u);
  EXPECT_GE(counted[0], 32767);
  EXPECT_LT(counted[0], 32767.2F);
  EXPECT_EQ(counted[1], 10000);
  EXPECT_EQ(counted[2], 32767);
}

TEST_F(WriteTest, LeavingEndsEveryRetryWithoutAScreen) {
  const std::vector<Scripted> scripts[] = {{}, {{2, "AX"}}, {{2, "AX"}, {12, "PN"}}};
  for (const auto& script : scripts)
    for (const auto& way :
         std::vector<std::function<void()>>{[] { MonitorStop = 1; }, [] { MSComm1.Close(); },
                                            [] { DeviceNamed("COM1")->gone = true; }}) {
      DeviceNamed("COM1")->gone = false;
      MonitorStop = 0;
      ASSERT_TRUE(OpenCommPort(27, 0));
      AnswerInTurn(script);
      const std::int64_t start = NowUs();
      AfterMs(700, way);
      EXPECT_EQ(Write(16, 1), 1);
      EXPECT_LE(NowUs() - start, 701000);
      EXPECT_FALSE(frmerr.loaded);
    }
}

TEST_F(WriteTest, EndOfTheProgramEndsTheRetries) {
  AfterMs(700, [] { EndProgram(); });
  EXPECT_EQ(Write(16, 1), 1);
  EXPECT_LE(NowUs(), 701000);
}

// ---- the posted write ---------------------------------------------------------------------------

class TransferTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
    ASSERT_TRUE(OpenCommPort(27, 0));
    for (std::size_t i = 0; i < 512; ++i) BinImage[i] = sim::DefaultImage()[i];
    refreshed = 0;
    former = std::exchange(RefreshActiveEditor, [] { ++refreshed; });
  }
  void TearDown() override {
    RefreshActiveEditor = former;
    device.reset();
    LinkTest::TearDown();
  }
  std::optional<ZemDevice> device;
  static inline int refreshed = 0;
  void (*former)() = nullptr;
};

TEST_F(TransferTest, NothingPostedSendsNothing) {
  EXPECT_EQ(TransferPostedWrite(), Transfer::Nothing);
  EXPECT_TRUE(device->TakeHistory().empty());
  EXPECT_EQ(refreshed, 0);
}

TEST_F(TransferTest, AcceptedWriteReachesTheUnitAndTheCalibration) {
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1);
  MSComm1.RThreshold = 5;
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(device->TakeHistory(), (std::vector<std::string>{"P2", "S1", "S9"}));
  EXPECT_EQ(device->zem.Memory()[2], 77);
  EXPECT_EQ(CalValues[2], 1.25F);
  EXPECT_EQ(OnflyImageIndex, 0);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_EQ(refreshed, 1);
  EXPECT_EQ(MSComm1.RThreshold, 27);
  EXPECT_EQ(MSComm1.InputLen, 0);
}

TEST_F(TransferTest, TwoBytesGoInOneRecord) {
  BinImage[4] = 0x11;
  BinImage[5] = 0x22;
  PostWrite(4, 6000, 4, 2);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(device->zem.Memory()[4], 0x11);
  EXPECT_EQ(device->zem.Memory()[5], 0x22);
}

TEST_F(TransferTest, GpoWordIsWrittenButNotStoredHere) {
  PostWrite(300, 5, 244, 2);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Written);
  EXPECT_EQ(CalValues[300], 0);
  EXPECT_EQ(refreshed, 1);
}

TEST_F(TransferTest, RefusedWriteStoresNothing) {
  device->Fail("refuse:1:1");
  CalValues[2] = 3;
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Refused);
  EXPECT_EQ(CalValues[2], 3);
  EXPECT_EQ(refreshed, 0);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_EQ(MSComm1.RThreshold, 27);
  EXPECT_NE(device->zem.Memory()[2], 77);
  EXPECT_TRUE(frmerr.loaded);
  UnloadScreen(frmerr);
}

// The unit is so late that each of these is sent a second time, and answered twice.
TEST_F(TransferTest, SecondAnswerToARepeatedCommandIsNotTakenForTheNext) {
  for (const char* fault : {"slow:9900:1@P2", "slow:400:1@S1", "slow:1100:1@S9"}) {
    device->Fail(fault);
    ++BinImage[2];
    PostWrite(2, 1.25, 2, 1);
    EXPECT_EQ(TransferPostedWrite(), Transfer::Stored) << fault;
    EXPECT_EQ(device->zem.Memory()[2], BinImage[2]) << fault;
    EXPECT_FALSE(frmerr.loaded) << fault;
    AdvanceMs(10);
  }
}

TEST_F(TransferTest, AnswerOfBeforeThatCameDuringTheOpeningIsNotTakenForItsOwn) {
  DeliverAt("COM1", NowUs() + 3000, {'P', 'C'});
  PostWrite(2, 1.25, 2, 1);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
}

TEST_F(TransferTest, LaterEntryReplacesAPostedOne) {
  PostWrite(2, 1, 2, 1);
  PostWrite(3, 7, 3, 1);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(CalValues[2], 0);
  EXPECT_EQ(CalValues[3], 7);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Nothing);
}

TEST_F(TransferTest, EntryMadeDuringATransferIsTheNextOneAndNotMixedUp) {
  PostWrite(2, 1, 2, 1);
  AfterMs(25, [] { PostWrite(3, 7, 3, 1); });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(CalValues[2], 1);
  EXPECT_EQ(CalValues[3], 0);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(CalValues[3], 7);
}

TEST_F(TransferTest, EveryByteOfTheImageCanBeWritten) {
  for (int index = 0; index < 512; ++index) {
    BinImage[static_cast<std::size_t>(index)] = static_cast<std::int16_t>((index * 31 + 7) % 256);
    PostWrite(index, index, index, 1);
    ASSERT_NE(TransferPostedWrite(), Transfer::Refused) << index;
    ASSERT_EQ(device->zem.Memory()[static_cast<std::size_t>(index)], (index * 31 + 7) % 256);
  }
}

}  // namespace
