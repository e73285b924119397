// The main frame: caption, menu bar, status bar, and what ends the program.
#pragma once

#include <string_view>

#include "platform/frame.h"

extern Frame frmMain;

// The menu line of edit mode; the monitors put their own in mnuname while they run.
inline constexpr std::string_view EditModeLine =
    "                Brantwell Engine Controls         EDIT MODE";

// Fills the record: menus from their table, keys, close box. Every start state is put back.
void BuildMainFrame();
// Writes both panels of the status bar. Screens call it when they come to the front.
void DoStats();
// Changes the inert line at the end of the menu bar.
void SetModeLine(std::string_view line);

// The port in use from now on: kept in the settings and shown.
void UseComPort(int port);

// Offers changes for saving, unloads every screen, keeps the frame's place unless it is minimised,
// and ends the program.
void UnloadMainFrame();
// The menu's end of the program: the active screen is closed first.
void mnuFileExit_Click();
// The main menu's end of the program: changes go through Save As.
void ExitProgram();
