// The worked example of docs/formats.md against the real code.
#include <fstream>
#include <sstream>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "filestest.h"

namespace {

using FormatsDocument = FilesTest;

// The lines of the code block of this kind.
std::vector<std::string> CodeBlock(const std::string& kind) {
  std::ifstream document(HALVANE2_FORMATS);
  EXPECT_TRUE(document) << HALVANE2_FORMATS << " is not there";
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(document, line) && line != "```" + kind) {
  }
  while (std::getline(document, line) && line != "```") lines.push_back(line);
  return lines;
}

std::vector<std::uint8_t> ExampleBin() {
  std::vector<std::uint8_t> bytes;
  for (const std::string& line : CodeBlock("bin")) {
    std::istringstream words(line);
    unsigned address = 0;
    words >> std::hex >> address;
    EXPECT_EQ(address, bytes.size());
    for (unsigned byte = 0; words >> byte;) bytes.push_back(static_cast<std::uint8_t>(byte));
  }
  return bytes;
}

std::string ExampleS19() {
  std::string text;
  for (const std::string& line : CodeBlock("s19")) text += line + "\r\n";
  return text;
}

}  // namespace

TEST_F(FormatsDocument, ExampleSavesAsTheBytesThatItShows) {
  const std::vector<std::uint8_t> example = ExampleBin();
  ASSERT_EQ(example.size(), 2048U);
  PutFile("/home/user/EXAMPLE.BIN", example);
  OpenByDialog("/home/user/EXAMPLE.BIN");
  ForgetBoxes();
  savedata();
  EXPECT_EQ(FileBytes("/home/user/EXAMPLE.BIN"), example);
  EXPECT_EQ(FileTextOf("/home/user/EXAMPLE.S19"), ExampleS19());
}
