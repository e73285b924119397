// Settings, processes, printer, beep and desktop in memory.
#include <algorithm>
#include <utility>

#include "platform/canvas.h"
#include "platform/fit.h"
#include "platform/frame.h"
#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"

namespace {

// Lines of 10 point on a page; other sizes in proportion.
constexpr double PointsPerPage = 660;

struct Printer {
  bool refused = false;
  bool open = false;
  double pointSize = 10;
  std::string line;
  std::vector<std::vector<std::string>> pages;     // of the open document
  std::vector<std::vector<std::string>> finished;  // of all documents
  std::vector<std::string> log;
};

std::map<std::string, std::map<std::string, std::string>> settings;
std::vector<StartedProcess> processes;
Printer printer;
int desktopWidth = 1024;
int beeps = 0;
bool otherInstance = false;
bool editorMissing = false;

std::string NumberText(double number) {
  std::string text = std::to_string(number);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text;
}

void EndLine() {
  if (printer.pages.empty() || PrinterLine() >= PrinterLinesPerPage()) printer.pages.emplace_back();
  printer.pages.back().push_back(std::exchange(printer.line, {}));
}

}  // namespace

namespace headless {

void ResetSystem() {
  settings.clear();
  processes.clear();
  printer = {};
  desktopWidth = 1024;
  beeps = 0;
  otherInstance = false;
  editorMissing = false;
}

}  // namespace headless

// ---- the script's side --------------------------------------------------------------------------

void SetDesktopWidth(int pixels) { desktopWidth = pixels; }
void SetOtherInstance(bool runs) { otherInstance = runs; }
int BeepCount() { return beeps; }
std::vector<StartedProcess>& StartedProcesses() { return processes; }
void SetTextEditorMissing(bool missing) { editorMissing = missing; }
std::vector<std::vector<std::string>> PrintedPages() { return printer.finished; }
void SetPrinterRefused(bool refused) { printer.refused = refused; }
std::vector<std::string> PrinterLog() { return printer.log; }

// ---- settings, processes ------------------------------------------------------------------------

std::string GetSetting(const std::string& section, const std::string& key,
                       const std::string& otherwise) {
  auto found = settings.find(section);
  if (found == settings.end()) return otherwise;
  auto value = found->second.find(key);
  return value == found->second.end() ? otherwise : value->second;
}

void SaveSetting(const std::string& section, const std::string& key, const std::string& value) {
  settings[section][key] = value;
}

std::map<std::string, std::string> GetAllSettings(const std::string& section) {
  auto found = settings.find(section);
  return found == settings.end() ? std::map<std::string, std::string>{} : found->second;
}

bool AnotherInstanceRuns() { return otherInstance; }

bool StartTextEditor(const std::string& path, std::function<void()> ended, std::string& why) {
  if (editorMissing) {
    why = "No text editor was found.";
    return false;
  }
  return StartProcess("editor", path, [ended = std::move(ended)](int) {
    if (ended) ended();
  });
}

bool StartProcess(const std::string& program, const std::string& argument,
                  std::function<void(int)> ended) {
  auto tell = [ended = std::move(ended)](int exitCode) {
    if (ended) RunSoon([ended, exitCode] { ended(exitCode); });
  };
  processes.push_back({program, argument, tell});
  return true;
}

void Beep() { ++beeps; }

// ---- printer ------------------------------------------------------------------------------------

bool PrinterBegin(const std::string& documentName) {
  if (printer.refused) return false;
  printer.log.push_back("begin " + documentName);
  printer.open = true;
  printer.pointSize = 10;
  printer.pages.assign(1, {});
  printer.line.clear();
  return true;
}

void PrinterFont(const std::string& name, double pointSize, bool bold) {
  printer.pointSize = std::max(pointSize, 1.0);
  printer.log.push_back("font " + name + " " + NumberText(pointSize) + (bold ? " bold" : ""));
}

// A column that the line has already passed begins a new line, as on a typewriter.
void PrintAt(int column, const std::string& text) {
  std::size_t before = static_cast<std::size_t>(std::max(column, 1) - 1);
  if (printer.line.size() > before) EndLine();
  printer.line.resize(before, ' ');
  printer.line += text;
}

void PrintLine(const std::string& text) {
  printer.line += text;
  EndLine();
}

void PrinterNewPage() {
  if (!printer.line.empty()) EndLine();
  printer.log.push_back("page");
  printer.pages.emplace_back();
}

int PrinterLine() {
  return printer.pages.empty() ? 0 : static_cast<int>(printer.pages.back().size());
}

int PrinterLinesPerPage() { return static_cast<int>(PointsPerPage / printer.pointSize); }

void PrinterEnd() {
  if (!printer.open) return;
  if (!printer.line.empty()) EndLine();
  printer.log.push_back("end");
  printer.open = false;
  for (auto& page : printer.pages) printer.finished.push_back(std::move(page));
  printer.pages.clear();
}

void PrinterAbort() {
  if (!printer.open) return;
  printer.log.push_back("abort");
  printer.open = false;
  printer.line.clear();
  printer.pages.clear();
}

// ---- desktop ------------------------------------------------------------------------------------

int MaximisedFrameWidth() { return desktopWidth + 8; }

// A desktop of 4:3, and a frame without borders and bars.
Room RoomForWork() {
  constexpr double pixelsPerTwip = 96.0 / 1440;
  Frame* frame = TheFrame();
  if (!frame || !frame->shown || frame->maximised) return {desktopWidth, desktopWidth * 3 / 4};
  ReadFramePlace(*frame);
  return {static_cast<int>(frame->width * pixelsPerTwip),
          static_cast<int>(frame->height * pixelsPerTwip)};
}

// A typewriter font: 0.6 of its height wide, a little more in bold; 9 points is the desktop's.
TextSize MeasureText(const std::string& text, double pointSize, bool bold) {
  double pixels = (pointSize > 0 ? pointSize : 9) * 96 / 72;
  auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  auto characters =
      text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continues));
  return {static_cast<double>(characters) * pixels * (bold ? 0.65 : 0.6), pixels * 1.3};
}
