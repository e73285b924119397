// The program: every screen is registered by its name, then it starts.
#include "editors/editors.h"
#include "link/programmer.h"
#include "monitors/monitors.h"
#include "platform/loop.h"
#include "shell/start.h"

int main(int argc, char** argv) {
  StartPlatform(argc, argv);
  RegisterShellScreens();
  RegisterEditors();
  RegisterScreen("Program_ZEM", OpenProgram_ZEM);
  RegisterMonitors();
  Main();
  return RunProgram();
}
