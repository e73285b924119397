// The main menu.
#pragma once

#include <span>
#include <string_view>

#include "platform/screen.h"
#include "shell/buttonmenu.h"

extern Screen Form1;

std::span<const ButtonRow> MainMenuRows();
// Leaves what is up and shows the main menu, with the focus on this button.
void ShowMainMenu(std::string_view focus = {});
// Switches its buttons by what is registered and by what is live.
void RefreshMainMenu();
// The box that F1 shows where there is no field.
void ShowGeneralHelp();
