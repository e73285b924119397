// All editor screens.
#pragma once

// Registers each screen by its name. Before the first screen is opened; again after
// ForgetRegisteredScreens.
void RegisterEditors();
