// Every worked example of docs/protocol.md, run through the real code.
#include <fstream>
#include <map>
#include <sstream>

#include "link/programmer.h"
#include "support/headless/linktest.h"

namespace {

struct Turn {
  bool fromPc;
  std::string bytes;
};
using Example = std::vector<Turn>;

std::string BytesOfLine(std::istream& words) {
  std::string bytes;
  for (unsigned byte = 0; words >> std::hex >> byte;) bytes += static_cast<char>(byte);
  return bytes;
}

std::map<std::string, Example> ReadExamples() {
  std::ifstream document(HALVANE2_PROTOCOL);
  EXPECT_TRUE(document) << HALVANE2_PROTOCOL << " is not there";
  const std::string mark = "```zem ";
  std::map<std::string, Example> examples;
  for (std::string line; std::getline(document, line);) {
    if (!line.starts_with(mark)) continue;
    Example& example = examples[line.substr(mark.size())];
    while (std::getline(document, line) && line != "```") {
      std::istringstream words(line);
      std::string who;
      words >> who;
      EXPECT_TRUE(who == "PC" || who == "ZEM") << line;
      example.push_back({who == "PC", BytesOfLine(words)});
    }
  }
  return examples;
}

// Runs a command and says whether it came out as the document tells.
using Run = bool (*)();

bool Accepted(void (*command)()) {
  command();
  return CommError == 0;
}

bool WritesBytes(int index, std::initializer_list<std::int16_t> bytes) {
  std::copy(bytes.begin(), bytes.end(), BinImage.begin() + index);
  float result = -1;
  ONFLY(index, static_cast<float>(bytes.size()), result);
  return result == 0;
}

bool ReadsFrame() {
  MSComm1.RThreshold = 27;
  MSComm1.Output("F");
  if (PollingWait(WaitForFrame) != WaitEnd::Reply) return false;
  DecodeFrame(FrameReader::Monitor);
  return Live[LiveField::Erpm] == 2502 && Live[LiveField::Adv] == 28 &&
         Live[LiveField::Tog] == 10 && Live[LiveField::PwOn] == 8;
}

bool ReadsBack() {
  getgama();
  return CommError == 0 && OptionFlags == 0xF8 && InjectorOffset == -1.5 && GamaNow > 9.95 &&
         GamaNow < 9.96;
}

bool NamesTheProgram() {
  const auto program = QueryLoadedProgram();
  return program && program->binName == "STREET1" && program->promVersion == "20105";
}

bool SetsAfr() {
  LiveFrame frame{};
  frame[19] = 50;
  DecodeFrame(frame, FrameReader::Monitor);
  return Accepted([] { oafr(60); });
}

bool OpensSession() {
  OnflySession session;
  return OpenOnflySession(session) == SessionEnd::Open;
}

bool Programs() {
  MSComm1.Close();
  CurrentBinPath = "/home/user/a.bin";
  PutTextFile("/home/user/a.S19", "S104B6100A2B\r\nS9030000FC\r\n");
  OpenProgram_ZEM();
  const bool verified = ShownText(Program_ZEM, "Result").find("VERIFIED") != std::string::npos;
  UnloadScreen(Program_ZEM);
  return verified;
}

bool TestsLink(bool expected) {
  MSComm1.Close();
  const bool live = ZEMLive();
  if (!live) TakeBox();
  return live == expected;
}

const std::map<std::string, Run> runs = {
    {"link test", [] { return TestsLink(true); }},
    {"link test of an old PROM", [] { return TestsLink(false); }},
    {"live frame", ReadsFrame},
    {"read-back", ReadsBack},
    {"loaded program", NamesTheProgram},
    {"advance, -10 degrees", [] { return OnAdvance = -10, Accepted(ADDADV); }},
    {"advance, 10 degrees", [] { return OnAdvance = 10, Accepted(ADDADV); }},
    {"gama, -40 %", [] { return OnGama = -0.4, Accepted(gama); }},
    {"TPS blend, 1.5 V", [] { return OnTpsBlend = 1.5, Accepted(fik); }},
    {"injector offset, 1.07 ms", [] { return OnInjOffset = 1.07, Accepted(turn); }},
    {"GPO, -30 %", [] { return OnGpo = -30, Accepted(ogpo); }},
    {"TOG, 10 ms", [] { return OnTog = 10, Accepted(settog); }},
    {"AFR, 10 above the base", SetsAfr},
    {"open loop", [] { return ClosedLoop = false, Accepted(togego); }},
    {"clear zero advance", [] { return Accepted(cleartdc); }},
    {"zero advance", [] { return Accepted(settdc); }},
    {"kill", [] { return Accepted(KillEngine); }},
    {"live session", OpensSession},
    {"memory write", [] { return WritesBytes(16, {0x0A}); }},
    {"memory write over the page end",
     [] {
       return WritesBytes(255, {0x11, 0x22});
     }},
    {"programming with one refusal", Programs},
};

class ProtocolDocument : public LinkTest {};

TEST_F(ProtocolDocument, EveryExampleRunsAsItIsWritten) {
  const auto examples = ReadExamples();
  for (const auto& [name, example] : examples) {
    ASSERT_TRUE(runs.contains(name)) << name;
    LinkTest::TearDown();
    LinkTest::SetUp();
    std::vector<Scripted> script;
    std::string sent;
    std::size_t unanswered = 0;
    for (const Turn& turn : example) {
      if (turn.fromPc) {
        sent += turn.bytes;
        unanswered += turn.bytes.size();
      } else {
        script.push_back({unanswered, turn.bytes});
        unanswered = 0;
      }
    }
    AnswerInTurn(script);
    ASSERT_TRUE(OpenCommPort(2, 0));
    EXPECT_TRUE(runs.at(name)()) << name;
    EXPECT_EQ(Sent(), sent) << name;
  }
  EXPECT_EQ(examples.size(), runs.size());
}

}  // namespace
