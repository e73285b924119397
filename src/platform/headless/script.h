// The headless platform's other side: what a test (or a scripted user) does to it and asks of it.
// Virtual clock, in-memory files and ports, boxes answered from a list. Nothing sleeps.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/screen.h"

// Everything back to the start: clock 0, no files but the empty current folder "/home/user" and the
// empty folder of the program's data "/program", no settings, no devices, no boxes, no answers.
// Calls ResetPlatform.
void ResetHeadless();

// ---- clock: a yield is one pass of 30 microseconds, and due events run in it --------------------
std::int64_t NowUs();
void AdvanceUs(std::int64_t microseconds);  // runs what comes due, as the queue would
void AdvanceMs(double milliseconds);
void AtUs(std::int64_t time, std::function<void()> routine);       // absolute, from the queue
void AfterMs(double milliseconds, std::function<void()> routine);  // from now
// The queue at depth 0: RunFromQueue routines, RunSoon routines, events due now. Tests are the
// queue: a live loop that was requested runs inside this call.
void RunUntilIdle();
std::int64_t PassCount();  // yields since the reset
void SetClock(const std::string& date, double secondsSinceMidnight);

// ---- files ------------------------------------------------------------------------------------
void PutFile(const std::string& path, const std::vector<std::uint8_t>& bytes);
void PutTextFile(const std::string& path, const std::string& text);
std::vector<std::uint8_t> FileBytes(const std::string& path);  // empty when there is none
std::string FileTextOf(const std::string& path);
void PutLink(const std::string& path, const std::string& target);
void PutFolder(const std::string& path);
void SetReadOnlyFile(const std::string& path, bool readOnly);
void SetUnreadableFile(const std::string& path, bool unreadable);
std::vector<std::string> AllFiles();
// Fails the nth read, write or open from now with this failure number; for ever when told.
void FailNthRead(int nth, int number, bool forEver = false);
void FailNthWrite(int nth, int number, bool forEver = false);
void FailNthOpen(int nth, int number, bool forEver = false);
// A kill in the middle: SaveWholeFile throws KilledHere after so many bytes and cleans nothing up.
struct KilledHere {};
void KillSaveAfter(std::size_t bytes);
std::vector<std::string> OpenFilePaths();

// ---- ports ------------------------------------------------------------------------------------
struct FakeDevice {
  std::string refusal;  // OpenPort fails with these words when not empty
  bool gone = false;    // unplugged: writes fail, and an open port is told
  // What the device does with bytes that were written to it; it answers with DeliverAt.
  std::function<void(std::span<const std::uint8_t> bytes, std::int64_t nowUs)> written;
  // What it has sent until now is about to be forgotten: time to deliver it.
  std::function<void()> discarding;
  std::function<void()> opened;
  std::function<void()> closed;
};
void AddDevice(const std::string& name, FakeDevice device);
void RemoveDevice(const std::string& name);  // "no such device" from now on; an open port is told
FakeDevice* DeviceNamed(const std::string& name);
void DeliverAt(const std::string& device, std::int64_t timeUs, std::vector<std::uint8_t> bytes);
void DeliverLineEvent(const std::string& device, int number);
std::vector<std::uint8_t> WrittenTo(const std::string& device);  // all since the reset
void ForgetWritten(const std::string& device);
bool DeviceIsOpen(const std::string& device);
std::string PortSettingsOf(const std::string& device);        // of the last time it was opened
void SetDeviceOfPort(int number, const std::string& device);  // default "COM<n>"

// ---- the rest of the outside --------------------------------------------------------------------
void SetDesktopWidth(int pixels);  // default 1024
void SetOtherInstance(bool runs);
int BeepCount();
struct StartedProcess {
  std::string program;
  std::string argument;
  std::function<void(int)> ended;  // a test calls it to end the process
};
std::vector<StartedProcess>& StartedProcesses();
void SetTextEditorMissing(bool missing);
// Lines of all finished documents: pages of lines.
std::vector<std::vector<std::string>> PrintedPages();
void SetPrinterRefused(bool refused);
std::vector<std::string> PrinterLog();  // "begin NAME", "font NAME SIZE", "page", "end", "abort"

// ---- the user ---------------------------------------------------------------------------------
// Keys go to the active screen (a Dialog in front first), then to the frame.
void HeadlessKey(KeyEvent event);
void HeadlessClick(Control& control);
void HeadlessChoose(Control& control, int index);
void HeadlessDoubleClick(Control& control, int index);
void HeadlessMouse(Control& control, const MouseEvent& event);
void HeadlessMenu(const std::string& name);
void HeadlessCloseBox(Screen& screen);
void HeadlessCloseFrame();
void HeadlessMoveFrame(double left, double top, double width, double height);  // 1/1440 inch
void HeadlessMinimiseFrame(bool minimised);
void HeadlessMoveScreen(Screen& screen, double left, double top);  // Above, Child
void ResizeCanvas(Control& control, int width, int height);        // default 640 x 480
std::string LastPopUpMenu();  // name of the menu popped up last, "" after it was asked
// What the user sees, as of the last told change of the record.
std::string SeenText(const Control& control);  // text of a field, caption of others, chosen item
bool SeenVisible(const Control& control);
bool SeenEnabled(const Control& control);
Control* SeenFocus();  // the control that has the keys, or null
int SeenFocusMoves();  // how often the focus was seen to move since the reset

// ---- boxes ------------------------------------------------------------------------------------
// Every box is kept, and answered from the list of answers of its kind; without one, or when it has
// no such button, it is left by its close box. A hook runs while the box is open (the queue runs
// meanwhile).
struct HeadlessBox {
  std::string kind;  // "message", "input", "open", "save"
  std::string title;
  std::string text;
  Buttons buttons = Buttons::Ok;
  BoxIcon icon = BoxIcon::None;
  std::string filter;
  std::string preset;  // of an input box
};
std::vector<HeadlessBox>& HeadlessBoxes();
void PushAnswer(Answer answer);
void PushInput(std::optional<std::string> text);
void PushFile(std::optional<std::string> path);
std::size_t AnswersLeft();
void WhileNextBoxIsOpen(std::function<void()> routine);
