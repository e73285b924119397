// The fixture of the basic injector screen.
#pragma once

#include <string>
#include <vector>

#include "core/globalstate.h"
#include "editors/binjgraph.h"
#include "link/onfly.h"
#include "screens/editorscreens.h"

class BinjGraphTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    OnInjOffset = 0;
    PendInj = 0;
    Open(BinjGraph());
    CalChanged = false;
  }
  void Reopen() {
    UnloadScreen(Up());
    Open(BinjGraph());
  }
  int Index(std::string_view list) { return The(list).listIndex; }
  bool GraphSays(const std::string& text) {
    for (const Primitive& primitive : The("Graph").drawing.primitives)
      if (primitive.kind == PrimitiveKind::Text && primitive.text == text) return true;
    return false;
  }
  // Straight lines of this colour on the graph.
  int LinesIn(Colour colour) {
    int count = 0;
    for (const Primitive& primitive : The("Graph").drawing.primitives)
      count += primitive.kind == PrimitiveKind::Line && primitive.stroke.colour == colour;
    return count;
  }
};
