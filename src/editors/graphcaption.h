// What a table screen tells the 3D graph about the table that it hands over.
#pragma once

#include <string>

struct GraphHandOver {
  std::string fieldCaption;  // in front of the value, with its "&"
  std::string unit;          // of the value, "" has none
};

// Of the table that the graph shows. Starts empty; set before the graph is opened.
extern GraphHandOver Graph3DCaption;
