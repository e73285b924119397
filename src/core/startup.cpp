// Starting and ending, as far as no screen is concerned.
#include "core/startup.h"

#include <iterator>
#include <string>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/frame.h"
#include "platform/system.h"

namespace {

struct WidthRow {
  int widthPixels;
  int screenClass;
  double statusPointSize;
};
constexpr WidthRow widthRows[] = {{640, 1, 8}, {800, 2, 10}, {1024, 3, 12}, {1152, 4, 14}};
// A maximised frame is wider than the screen by its borders.
constexpr int borderPixels = 8;

const WidthRow* RowOfWidth(int widthPixels) {
  const WidthRow& widest = *std::prev(std::end(widthRows));
  if (widthPixels >= widest.widthPixels) return &widest;
  for (const WidthRow& row : widthRows)
    if (row.widthPixels == widthPixels) return &row;
  return nullptr;
}

struct PlaceRow {
  const char* key;
  double Frame::*member;  // 1/1440 inch
};
constexpr PlaceRow placeRows[] = {{"MainLeft", &Frame::left},
                                  {"MainTop", &Frame::top},
                                  {"MainWidth", &Frame::width},
                                  {"MainHeight", &Frame::height}};

}  // namespace

bool StartCore() {
  if (AnotherInstanceRuns()) return false;
  ResetCalibrationState();
  StartDir = CurrentFolder();
  return true;
}

int ScreenClassOfWidth(int widthPixels) {
  const WidthRow* row = RowOfWidth(widthPixels);
  return row ? row->screenClass : widthPixels;
}

std::optional<double> StatusPointSizeOfWidth(int widthPixels) {
  const WidthRow* row = RowOfWidth(widthPixels);
  if (!row) return std::nullopt;
  return row->statusPointSize;
}

void TakeScreenWidth(Frame& frame) {
  const int widthPixels = MaximisedFrameWidth() - borderPixels;
  ScreenClass = ScreenClassOfWidth(widthPixels);
  if (const auto pointSize = StatusPointSizeOfWidth(widthPixels))
    SetStatusPointSize(frame, *pointSize);
}

void RestoreFramePlace(Frame& frame) {
  for (const PlaceRow& row : placeRows) frame.*row.member = ReadSetting("Settings", row.key);
}

void StoreFramePlace(Frame& frame) {
  ReadFramePlace(frame);
  if (frame.minimised) return;
  for (const PlaceRow& row : placeRows)
    StoreSetting("Settings", row.key, static_cast<int>(RoundEven(frame.*row.member)));
}

bool OfferSavingChanges() {
  if (!CalChanged) return true;
  const std::string lineBreak(LineBreak);
  const std::string margin(10, ' ');
  const std::string text = margin + "Changes have been made to the File " + CurrentBinPath +
                           margin + lineBreak + margin + "Do You Wish to Save " + CurrentBinPath +
                           " at this time?" + lineBreak;
  if (MsgBox(text, Buttons::YesNo, "Save File Data", BoxIcon::Question) != Answer::Yes) return true;
  return savedata();
}
