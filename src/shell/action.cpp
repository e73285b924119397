// Readiness and running of actions.
#include "shell/action.h"

#include "platform/screen.h"
#include "shell/navigation.h"

bool IsReady(const Action& action) {
  const std::string_view screen = action.screenNow ? action.screenNow() : action.screen;
  return screen.empty() || ScreenRegistered(screen);
}

void Run(const Action& action) {
  if (!IsReady(action)) return;
  if (action.run) {
    action.run();
    return;
  }
  if (action.beside)
    OpenBeside(action.screen);
  else
    GoTo(action.screen);
  if (action.press.empty()) return;
  if (Screen* opened = FindLoaded(action.screen)) PressButton(*opened, action.press);
}
