// The two guards of the main menu's commands.
#include "shell/guards.h"

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/dialogs.h"

bool RefusedWhileLive() {
  if (MonitorMode == NothingLive) return false;
  MsgBox("This Process is Unavailable while ONFLY Monitoring is Active.");
  return true;
}

bool RefusedWhilePortHeld() {
  if (!PortHeld) return false;
  MsgBox("Port is already in use by another process.");
  return true;
}
