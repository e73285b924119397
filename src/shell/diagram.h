// The tree of the whole program.
#pragma once

#include <span>
#include <string_view>

#include "platform/screen.h"
#include "shell/action.h"

struct DiagramNode {
  std::string_view key;
  std::string_view parent;
  std::string_view text;
};

// What a double click on a node with this text does.
struct DiagramCommand {
  std::string_view text;
  Action action;
};

extern Screen Soft_Dia;

std::span<const DiagramNode> DiagramNodes();
std::span<const DiagramCommand> DiagramCommands();
