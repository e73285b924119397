// Boxes that wait for the user: messages, one value, a file name. Each returns when it is closed;
// the event queue runs meanwhile.
#pragma once

#include <optional>
#include <string>

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };
enum class BoxIcon { None, Information, Question, Exclamation, Critical };

// A message. The text is passed on as given; LF CR and CR LF are each shown as one line break. The
// window's close box and Esc answer Cancel where there is one, No at Yes and No, Ok at Ok.
Answer MsgBox(const std::string& text, Buttons buttons = Buttons::Ok, const std::string& title = {},
              BoxIcon icon = BoxIcon::None);

// Asks for one line of text; nothing when the user cancels.
std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                    const std::string& preset = {});

struct FileDialog {
  std::string title;
  std::string filter;    // "Text|*.ext|Text|*.ext", an extension counts in any case
  std::string fileName;  // the name that stands in it: preset before, choice after
  std::string folder;    // where it starts; empty is the folder of the last choice
};
// Let the user choose; the chosen path stands in fileName. Raises cancel (32755) when left without.
// The open dialog lets a name pass that does not exist; the save dialog does not ask about
// replacing.
void ShowOpenDialog(FileDialog& dialog);
void ShowSaveDialog(FileDialog& dialog);
