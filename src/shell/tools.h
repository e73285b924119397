// The software tools and the screen of the program's options.
#pragma once

#include <span>

#include "platform/screen.h"
#include "shell/buttonmenu.h"

extern Screen STools;
extern Screen Options;

std::span<const ButtonRow> ToolRows();
