// From the open dialog to a calibration in memory.
#include <algorithm>
#include <optional>
#include <string>

#include "core/binfile.h"
#include "core/calfix.h"
#include "core/foreignbin.h"
#include "core/globalstate.h"
#include "core/messages.h"
#include "core/shortname.h"
#include "core/singles.h"
#include "core/version.h"
#include "platform/files.h"

FileDialog CommonDialog;

namespace {

// A file with fewer reads than these is taken for one that is not there.
constexpr int leastReads = 5;

enum class Verdict { Good, AskAgain, GiveUp };

// Only these two spellings are known; the name in capitals passes.
bool IsBaseName(const std::string& path) {
  const std::string ending = LastCharacters(path, 8);
  return ending == "Base.bin" || ending == "base.bin";
}

bool UserTriesAgain() {
  std::string text(LineBreak);
  for (const char* line : {"File Name does not exists", "Type OK: To Try Again"})
    text.append(line).append(LineBreak).append(LineBreak);
  text += "Type CANCEL: To Return";
  return MsgBox(text, Buttons::OkCancel, "File Open Error", BoxIcon::Exclamation) == Answer::Ok;
}

bool UserCorrectsExtension(const std::string& extension) {
  std::string text = "INCORRECT FILE EXTENSION:   " + extension;
  text.append(LineBreak).append(LineBreak).append("Do You Want to Enter a New FileName");
  return MsgBox(text, Buttons::YesNo, "File Extension Error", BoxIcon::Question) == Answer::Yes;
}

Verdict Judge(const std::string& path) {
  if (IsBaseName(path)) {
    MsgBox("Base.Bin is not a Valid BIN File. Please Enter a New Name.");
    return Verdict::AskAgain;
  }
  if (path.empty()) return Verdict::GiveUp;
  if (!FileExists(path)) return UserTriesAgain() ? Verdict::AskAgain : Verdict::GiveUp;
  const std::string extension = LastCharacters(path, 3);
  if (extension != "bin" && extension != "BIN")
    return UserCorrectsExtension(extension) ? Verdict::AskAgain : Verdict::GiveUp;
  return Verdict::Good;
}

// Leaves the chosen name in CommonDialog. False when the user gives up.
bool ChooseBin() {
  while (true) {
    CommonDialog = {.title = "Open Halvane2 User BIN Files",
                    .filter = "Halvane2 File(*.BIN)|*.bin"};
    ShowOpenDialog(CommonDialog);
    const Verdict verdict = Judge(CommonDialog.fileName);
    if (verdict != Verdict::AskAgain) return verdict == Verdict::Good;
  }
}

// Asks first when another calibration is open. False when the user keeps that.
bool AimAt(const std::string& path) {
  BinShortName = ShortNameOnOpen(path, CurrentFolder());
  TargetBinPath = path;
  if (!FileIsOpen || CurrentBinPath.empty()) return true;
  TargetBinPath = CurrentBinPath;
  std::string text = "Current Open Halvane2 Edit file is " + CurrentBinPath;
  text.append(LineBreak).append("Do you want to CHANGE this file to " + path + "?");
  return MsgBox(text, Buttons::YesNoCancel, {}, BoxIcon::Question) == Answer::Yes;
}

void TakeNativeBin(const std::string& path) {
  CurrentBinPath = TargetBinPath = path;
  CalValues = RawSingles;
}

// False when the length says nothing and no file came before it.
bool TellBinFileType(int reads) {
  if (const BinType* type = BinTypeOfLength(reads - 1)) BinFileType = type->name;
  return !BinFileType.empty();
}

enum class Opening { Done, LeftAlone, Refused };

Opening Open() {
  const bool nameIsChosen = UseDialogName;
  if (!nameIsChosen && (!ChooseBin() || !AimAt(CommonDialog.fileName))) return Opening::LeftAlone;
  const std::string path = CommonDialog.fileName;
  UseDialogName = false;
  FileIsOpen = true;
  const int reads = ReadRawSingles(path);
  if (reads < leastReads) RaiseFailure(FailureFileNotFound);
  if (!TellBinFileType(reads)) return Opening::LeftAlone;
  if (BinFileType == NativeBinType)
    TakeNativeBin(path);
  else if (!ConvertForeignBin(*BinTypeNamed(BinFileType), path))
    return Opening::Refused;
  ShowOpenFile(path);
  FixLoadedCalibration();
  FixOpenedCalibration();
  PublishLoadedCalibration();
  return Opening::Done;
}

// The base calibration is named without a folder and stands beside the program.
std::string PathOfBase() {
  const bool hasFolder = CurrentBinPath.find_first_of("/\\") != std::string::npos;
  return hasFolder || FileExists(CurrentBinPath) ? CurrentBinPath : DataFile(CurrentBinPath);
}

}  // namespace

void OpenCalibration() {
  const std::string formerTarget = TargetBinPath;
  Opening opening = Opening::Refused;
  try {
    opening = Open();
  } catch (const Failure& failure) {
    if (failure.number == FailureCancel) opening = Opening::LeftAlone;
    ShowFailure(failure);
  }
  if (opening == Opening::Done) return;
  // Nothing was opened: a save must not go over the file that could not be taken in.
  TargetBinPath = formerTarget;
  if (opening == Opening::Refused) CurrentBinPath.clear();
}

void LoadBaseCalibration() {
  try {
    const std::vector<float> singles = ReadSingles(PathOfBase());
    if (singles.size() > 512) RaiseFailure(FailureSubscript);
    if (singles.size() + 1 < leastReads) RaiseFailure(FailureFileNotFound);
    std::copy(singles.begin(), singles.end(), CalValues.begin());
    TargetBinPath = CurrentBinPath;
    ShowOpenFile(TargetBinPath);
    FixLoadedCalibration();
    PublishLoadedCalibration();
  } catch (const Failure& failure) {
    ShowFailure(failure);
    CurrentBinPath.clear();
  }
}
