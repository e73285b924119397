// The guard of the main menu's commands.
#include "shell/guards.h"

#include "core/globalstate.h"
#include "platform/dialogs.h"

bool RefusedWhileLive() {
  if (MonitorMode == NothingLive) return false;
  MsgBox("This Process is Unavailable while ONFLY Monitoring is Active.");
  return true;
}
