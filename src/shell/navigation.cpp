// Going from one screen of work to another.
#include "shell/navigation.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "link/comm.h"
#include "platform/loop.h"
#include "shell/mainmenu.h"

bool (*HeldByPendingEntry)() = [] { return false; };

namespace {

// Those that are being unloaded already do not count.
std::vector<Screen*> WorkInSight() {
  std::vector<Screen*> screens;
  for (Screen* screen : LoadedScreens())
    if (screen->placement == ScreenPlacement::Work && screen->visible && IsUp(*screen))
      screens.push_back(screen);
  return screens;
}

void Unload(const std::vector<Screen*>& screens) {
  for (Screen* screen : screens) UnloadScreen(*screen);
}

}  // namespace

Screen* FindLoaded(std::string_view name) {
  for (Screen* screen : LoadedScreens())
    if (screen->name == name) return screen;
  return nullptr;
}

void UnloadNamed(std::string_view name) {
  if (Screen* screen = FindLoaded(name)) UnloadScreen(*screen);
}

void LeaveWork() { Unload(WorkInSight()); }

void CloseActiveScreen() {
  Screen* active = ActiveScreen();
  if (!active || active->placement != ScreenPlacement::Work) active = TopWorkScreen();
  if (active) UnloadScreen(*active);
}

void GoTo(std::string_view name) {
  if (!ScreenRegistered(name)) return;
  Screen* top = TopWorkScreen();
  if (top && top->name == name && IsUp(*top)) {
    ShowScreen(*top);
    return;
  }
  LeaveWork();
  OpenScreen(name);
}

void OpenBeside(std::string_view name) {
  const std::vector<Screen*> before = WorkInSight();
  if (!OpenScreen(name)) return;
  Screen* top = TopWorkScreen();
  const bool isNew = top && std::find(before.begin(), before.end(), top) == before.end();
  if (isNew) Unload(before);
}

void OpenLive(std::string_view name, std::function<void()> ended) {
  RunFromQueue([name = std::string(name), ended = std::move(ended)] {
    OpenScreen(name);
    if (ended) ended();
  });
}

// The message of a refused write leads nowhere when it is closed.
bool AnythingUp() {
  const Screen* dialog = OpenDialogScreen();
  return TopWorkScreen() || (dialog && dialog != &frmerr);
}

void ReturnToMainMenu() {
  RunFromQueue([] {
    if (!AnythingUp() && !ProgramEnding()) ShowMainMenu();
  });
}

void PressButton(Screen& screen, std::string_view caption) {
  for (Control& control : screen.controls) {
    if (control.kind != ControlKind::Button || control.caption != caption) continue;
    ClickControl(control);
    return;
  }
}
