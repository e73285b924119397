// Start-up of the program.
#pragma once

// Registers the shell's own screens, so that menus and others open them by name.
void RegisterShellScreens();
// Prepares the state, shows the main frame and ends in the main menu or the tip of the day. When
// another instance runs nothing is shown and the queue ends at once. Every screen is registered
// before.
void Main();
