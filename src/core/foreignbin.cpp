// The types as rows, and the one flow that all foreign types go through.
#include "core/foreignbin.h"

#include <array>

#include "core/globalstate.h"
#include "core/messages.h"
#include "platform/dialogs.h"

namespace {

constexpr std::array<BinType, 7> types = {{
    {NativeBinType, 512, "", "", nullptr, ""},
    {"RUX3", 133, " is a 'RUX-3' Type BIN File", "RUX3", nullptr, ""},
    {"LUMENB", 401, " is a 'LUMEN BLEND' Type BIN File", "LUMEN BLEND", nullptr, ""},
    {"KORZ", 433, " is a 'KORZ' Type BIN File", "KORZ", nullptr, ""},
    {"KOR", 441, " is a 'KOR' Type BIN File", "KOR", nullptr, ""},
    {"LUMEN2", 351, " is a 'LUMEN2' Type BIN File", "LUMEN2", nullptr, ""},
    {"KORB", 501, " is a 'KORB Or Halvane1' Type BIN File", "KORB/Halvane1", nullptr, ""},
}};

bool UserWantsConversion(const BinType& type, const std::string& path) {
  std::string text = path + " ";
  text.append(type.question).append(LineBreak).append(LineBreak);
  text += "Do You Wish to Convert This File to Halvane2 Type Bin File.";
  return MsgBox(text, Buttons::YesNo, "Convert File Type", BoxIcon::Question) == Answer::Yes;
}

void SayThatNobodyCanConvert(const BinType& type) {
  std::string text = "This version of Halvane2 cannot convert '";
  text.append(type.plainName).append("' files yet.").append(LineBreak).append(LineBreak);
  text += "The file has not been changed, and no BIN file is open.";
  MsgBox(text, Buttons::Ok, "Convert File Type", BoxIcon::Information);
}

}  // namespace

std::span<const BinType> BinTypes() { return types; }

const BinType* BinTypeOfLength(int singles) {
  for (const BinType& type : types)
    if (type.singles == singles) return &type;
  return nullptr;
}

const BinType* BinTypeNamed(std::string_view name) {
  for (const BinType& type : types)
    if (type.name == name) return &type;
  return nullptr;
}

bool ConvertForeignBin(const BinType& type, const std::string& path) {
  if (!UserWantsConversion(type, path)) return false;
  if (!type.convert) {
    SayThatNobodyCanConvert(type);
    return false;
  }
  CurrentBinPath = TargetBinPath = path;
  type.convert();
  CalChanged = true;
  MsgBox(std::string(type.closing), Buttons::Ok, "Conversion Complete", BoxIcon::Information);
  return true;
}
