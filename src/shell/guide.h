// The user's guide in the system's text editor.
#pragma once

// Starts the editor on the guide and waits, without holding up the queue, until that process has
// ended: the screen that is up stays in sight, switched off, and then comes back. When it was left
// meanwhile and nothing else is up, the main menu or the tools return.
void ViewGuideFromMainMenu();
void ViewGuideFromTools();
