// The rest of the outside: settings, processes, printer, beep, other instances.
#pragma once

#include <functional>
#include <map>
#include <string>

// Per-user settings by section and key; values are texts.
std::string GetSetting(const std::string& section, const std::string& key,
                       const std::string& otherwise = {});
void SaveSetting(const std::string& section, const std::string& key, const std::string& value);
std::map<std::string, std::string> GetAllSettings(const std::string& section);

// Whether another instance of the program runs for this user. The first call takes the place.
bool AnotherInstanceRuns();

// Opens a file in the system's text editor ("notepad.exe" on Windows); `ended` runs from the queue
// when that process has ended. False when none could be started, with the reason.
bool StartTextEditor(const std::string& path, std::function<void()> ended, std::string& why);
// Starts a program; `ended` gets its exit code from the queue. False when it cannot be started.
bool StartProcess(const std::string& program, const std::string& argument,
                  std::function<void(int)> ended);

void Beep();

// The printer as a stream of text. Columns count from 1 in characters of the font.
// PrinterBegin lets the user choose a printer; false when the user left without.
bool PrinterBegin(const std::string& documentName);
void PrinterFont(const std::string& name, double pointSize, bool bold = false);
// On the current line; a column that the line has passed already begins a new line.
void PrintAt(int column, const std::string& text);
void PrintLine(const std::string& text = {});  // the rest of the line and its end
void PrinterNewPage();
int PrinterLine();          // lines printed on this page
int PrinterLinesPerPage();  // at the current font
void PrinterEnd();          // sends the document
void PrinterAbort();
