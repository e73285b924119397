// Going from one screen of work to another. One is up at a time: going to another unloads the one
// left. The main menu returns when nothing else is up.
#pragma once

#include <functional>
#include <string_view>

#include "platform/screen.h"

// The loaded screen of this name, or null.
Screen* FindLoaded(std::string_view name);
// Unloads it; nothing happens when no screen of this name is loaded.
void UnloadNamed(std::string_view name);

// Unloads every screen of work that is in sight. Hidden ones are left to who hid them.
void LeaveWork();
// The active screen when it is one of work, otherwise the one of work on top: what "the active
// screen is closed" means. Nothing happens when there is none.
void CloseActiveScreen();

// Leaves what is up and opens the screen. One that is up already comes to the front as it is;
// nothing happens when nobody registered it.
void GoTo(std::string_view name);
// Opens the screen and leaves what is up only if the screen is one of work.
void OpenBeside(std::string_view name);
// Opens a live screen from the queue, so that its loop never runs inside another loop's yield. Its
// opener returns when the loop has ended; `ended` runs after that.
void OpenLive(std::string_view name, std::function<void()> ended = {});

// Whether a value that is typed and not confirmed keeps the user on its screen; it is then shown
// where to go on. The editors set it; until then nothing is ever pending.
extern bool (*HeldByPendingEntry)();

// Whether a screen of work or a box is up.
bool AnythingUp();
// Once the stack is back at the queue: shows the main menu when nothing else is up.
void ReturnToMainMenu();

// Clicks the button with this caption; nothing happens when there is none or it is off.
void PressButton(Screen& screen, std::string_view caption);
