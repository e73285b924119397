// Boxes answered from a list: messages, the input box, the file dialogs.
#include <deque>
#include <utility>

#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/native.h"

namespace {

std::vector<HeadlessBox> boxes;
std::deque<Answer> answers;
std::deque<std::optional<std::string>> inputs;
std::deque<std::optional<std::string>> files;
std::deque<std::function<void()>> hooks;
std::string lastFolder;
int openBoxes = 0;

struct BoxScope {
  BoxScope() { ++openBoxes; }
  ~BoxScope() { --openBoxes; }
  BoxScope(const BoxScope&) = delete;
  BoxScope& operator=(const BoxScope&) = delete;
  YieldScope yields;
};

// The queue runs while the box is open.
void Show(HeadlessBox box) {
  boxes.push_back(std::move(box));
  BoxScope scope;
  if (!hooks.empty()) {
    auto hook = std::move(hooks.front());
    hooks.pop_front();
    hook();
  }
  headless::RunTurn();
}

Answer AnswerOfCloseBox(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return Answer::Ok;
    case Buttons::YesNo:
      return Answer::No;
    default:
      return Answer::Cancel;
  }
}

bool HasButton(Buttons buttons, Answer answer) {
  switch (buttons) {
    case Buttons::Ok:
      return answer == Answer::Ok;
    case Buttons::OkCancel:
      return answer == Answer::Ok || answer == Answer::Cancel;
    case Buttons::YesNo:
      return answer == Answer::Yes || answer == Answer::No;
    case Buttons::YesNoCancel:
      return answer != Answer::Ok;
  }
  return false;
}

template <typename T>
T Take(std::deque<T>& list) {
  T value = std::move(list.front());
  list.pop_front();
  return value;
}

void ChooseFile(FileDialog& dialog, const char* kind) {
  Show({.kind = kind, .title = dialog.title, .text = dialog.fileName, .filter = dialog.filter});
  std::optional<std::string> path;
  if (!files.empty()) path = Take(files);
  if (!path) RaiseFailure(FailureCancel);
  if (path->empty()) {
    dialog.fileName.clear();
    return;
  }
  std::string folder = !dialog.folder.empty() ? dialog.folder : lastFolder;
  if (!folder.empty() && !path->starts_with('/')) path = folder + "/" + *path;
  dialog.fileName = headless::FullPath(*path);
  lastFolder = headless::FolderOf(dialog.fileName);
}

}  // namespace

namespace headless {

void ResetBoxes() {
  boxes.clear();
  answers.clear();
  inputs.clear();
  files.clear();
  hooks.clear();
  lastFolder.clear();
}

bool BoxIsOpen() { return openBoxes > 0; }

}  // namespace headless

// ---- the script's side --------------------------------------------------------------------------

std::vector<HeadlessBox>& HeadlessBoxes() { return boxes; }
void PushAnswer(Answer answer) { answers.push_back(answer); }
void PushInput(std::optional<std::string> text) { inputs.push_back(std::move(text)); }
void PushFile(std::optional<std::string> path) { files.push_back(std::move(path)); }
std::size_t AnswersLeft() { return answers.size() + inputs.size() + files.size(); }
void WhileNextBoxIsOpen(std::function<void()> routine) { hooks.push_back(std::move(routine)); }

// ---- dialogs.h ----------------------------------------------------------------------------------

// An answer that the box has no button for stays in the list: nobody could have pressed it.
Answer MsgBox(const std::string& text, Buttons buttons, const std::string& title, BoxIcon icon) {
  Show({.kind = "message", .title = title, .text = text, .buttons = buttons, .icon = icon});
  if (answers.empty() || !HasButton(buttons, answers.front())) return AnswerOfCloseBox(buttons);
  return Take(answers);
}

std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                    const std::string& preset) {
  Show({.kind = "input",
        .title = title,
        .text = prompt,
        .buttons = Buttons::OkCancel,
        .preset = preset});
  if (inputs.empty()) return std::nullopt;
  return Take(inputs);
}

void ShowOpenDialog(FileDialog& dialog) { ChooseFile(dialog, "open"); }
void ShowSaveDialog(FileDialog& dialog) { ChooseFile(dialog, "save"); }
