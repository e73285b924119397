// The user's guide in the system's text editor.
#include "shell/guide.h"

#include <string>

#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/screen.h"
#include "platform/system.h"
#include "shell/guards.h"
#include "shell/navigation.h"

namespace {

constexpr const char* guideName = "Halvane_Software_User's_Guide.txt";

void ComeBack(Screen* waiting, std::string_view caller) {
  if (waiting) SetScreenEnabled(*waiting, true);
  if (waiting && waiting->loaded && TopWorkScreen() == waiting)
    ShowScreen(*waiting);
  else if (!AnythingUp())
    GoTo(caller);
}

void ViewGuide(std::string_view caller) {
  const std::string path = DataFile(guideName);
  if (!FileExists(path)) RaiseFailure(FailureFileNotFound);
  Screen* waiting = FindLoaded(caller);
  const std::string name(caller);
  std::string why;
  if (!StartTextEditor(
          path, [waiting, name] { ComeBack(waiting, name); }, why)) {
    MsgBox(why, Buttons::Ok, "Error", BoxIcon::Critical);
    if (!AnythingUp()) GoTo(caller);
    return;
  }
  if (waiting) SetScreenEnabled(*waiting, false);
}

}  // namespace

void ViewGuideFromMainMenu() {
  if (!RefusedWhileLive()) ViewGuide("Form1");
}

void ViewGuideFromTools() {
  if (RefusedWhileLive()) return;
  GoTo("STools");  // the tree has been closed
  ViewGuide("STools");
}
