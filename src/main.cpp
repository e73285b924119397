// The program: every screen is registered by its name, then it starts.
#include "editors/editors.h"
#include "link/programmer.h"
#include "platform/loop.h"
#include "platform/screen.h"
#include "shell/start.h"

int main(int argc, char** argv) {
  StartPlatform(argc, argv);
  RegisterShellScreens();
  RegisterScreen("Program_ZEM", OpenProgram_ZEM);
  RegisterEditors();
  Main();
  return RunProgram();
}
