// The screens that show the running engine.
#pragma once

// Registers both monitors by their names.
void RegisterMonitors();
