// From a calibration in memory to the BIN file and the S19 file beside it.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "core/binfile.h"
#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/messages.h"
#include "core/openedfile.h"
#include "core/s19file.h"
#include "core/shortname.h"
#include "core/singles.h"
#include "core/version.h"
#include "platform/files.h"

namespace {

constexpr std::size_t savedSingles = 512;
constexpr std::size_t binBytes = 2048;
// A longer file is no calibration; it is too much to hold, and gets its first bytes in place.
constexpr std::int64_t largestReplaced = 1 << 20;

bool TargetHasExtension() {
  const std::string extension = LastCharacters(TargetBinPath, 4);
  if (extension == ".bin" || extension == ".BIN") return true;
  std::string text = "INCORRECT FILE EXTENSION:   " + extension;
  text.append(LineBreak).append(LineBreak).append("ReEnter a New FileName");
  MsgBox(text, Buttons::Ok, "File Extension Error", BoxIcon::Exclamation);
  TargetBinPath.clear();
  return false;
}

void SetSavedConstants() {
  const bool airFlow = LoadMode == "MAF";
  CalValues[252] = 400;
  CalValues[256] = CalValues[257] = 1;
  CalValues[258] = 0;
  CalValues[234] = airFlow ? -1 : 0;
  if (airFlow) CalValues[459] = 1;
}

std::int64_t LengthOf(const std::string& path) {
  if (!FileExists(path)) return 0;
  return FileLength(OpenedFile(path, FileMode::Read).handle);
}

void WriteInPlace(const std::string& path, std::span<const std::uint8_t> bytes) {
  const OpenedFile file(path, FileMode::ReadWrite);
  WriteFile(file.handle, bytes);
  FlushFile(file.handle);
  CloseFile(file.handle);
}

// The file ends with the bytes that writing over its beginning would give.
void WriteBin(const std::string& path) {
  std::vector<std::uint8_t> bytes = BytesOfSingles(std::span(CalValues).first(savedSingles));
  const std::int64_t formerLength = LengthOf(path);
  if (formerLength > largestReplaced) return WriteInPlace(path, bytes);
  if (formerLength > static_cast<std::int64_t>(binBytes)) {
    const std::vector<std::uint8_t> former = ReadWholeFile(path);
    bytes.insert(bytes.end(), former.begin() + binBytes, former.end());
  }
  SaveWholeFile(path, bytes);
}

// Bytes that an editor has posted are not in the files, since the control unit has not taken them
// yet. BinImage gets them back: they go out from there.
class KeepsWaitingBytes {
 public:
  KeepsWaitingBytes() = default;
  KeepsWaitingBytes(const KeepsWaitingBytes&) = delete;
  KeepsWaitingBytes& operator=(const KeepsWaitingBytes&) = delete;
  ~KeepsWaitingBytes() {
    const int end = std::min(waiting_.first + waiting_.count, static_cast<int>(BinImage.size()));
    for (int i = std::max(waiting_.first, 0); i < end; ++i)
      BinImage[static_cast<std::size_t>(i)] = image_[static_cast<std::size_t>(i)];
  }

 private:
  const ImageBytes waiting_ = BytesWaiting();
  const decltype(BinImage) image_ = BinImage;
};

bool WriteImage() {
  const KeepsWaitingBytes keeps;
  EncodeCalibration();
  return WriteS19();
}

bool Save() {
  if (TargetBinPath.empty()) {
    MsgBox(std::string(NoBinFileText));
    return false;
  }
  if (!TargetHasExtension()) return false;
  SetSavedConstants();
  BinShortName = ShortNameOnSave(TargetBinPath, CurrentFolder());
  StoreNameInCalibration();
  WriteBin(TargetBinPath);
  ShowOpenFile(TargetBinPath);
  if (!WriteImage()) return false;
  CalChanged = false;
  return true;
}

}  // namespace

ImageBytes (*BytesWaiting)() = [] { return ImageBytes{}; };

bool savedata() {
  try {
    return Save();
  } catch (const Failure& failure) {
    ShowFailure(failure, "Please File a Software Problem Report. (savedata)");
    return false;
  }
}

void SaveCalibrationAs() {
  try {
    do {
      if (CurrentBinPath.empty()) MsgBox(std::string(NoBinFileText));
      CommonDialog = {.title = " Save BIN file As",
                      .filter = "Halvane2 File(*.BIN)|*.bin",
                      .fileName = TargetBinPath};
      ShowSaveDialog(CommonDialog);
      if (LastCharacters(CommonDialog.fileName, 8) != "base.bin") break;
      MsgBox("Base.Bin is not a Valid BIN File Name. Please Enter a New File Name.");
    } while (true);
    TargetBinPath = CurrentBinPath = CommonDialog.fileName;
    savedata();
  } catch (const Failure& failure) {
    ShowFailure(failure);
  }
}
