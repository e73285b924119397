// Tests of the table screens: a calibration with four tables, the screens around them, and short
// words for cells.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/globalstate.h"
#include "editors/tableeditor.h"
#include "screens/editorscreens.h"

class TableTest : public EditorTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Opens a table; CalChanged is cleared. Again after it has been left.
  void OpenTable(Editor& editor);
  void Reopen();
  // The same in a session of the digital monitor.
  void GoLive();
  // Captions of the table's own controls, and of those that stand on every table.
  void ExpectCaptions(std::vector<std::pair<const char*, const char*>> own);
  // The control of a position.
  std::string At(int position);
  std::string CellText(int position) { return Text(At(position)); }
  Colour CellColour(int position) { return Back(At(position)); }
  void EnterCell(int position, std::string_view text) { Enter(At(position), text); }
  void Select(int position) { ClickOn(Up(), At(position)); }
  std::string Focused() { return ShownFocus(); }
  // Presses a fill key and answers its question.
  void FillWith(std::string_view key, std::optional<std::string> answer);
  // The input box shown; title and prompt.
  std::pair<std::string, std::string> Question();

  Screen calibration;  // the parent, with a button for each table
  Screen graph;
  Screen other;
};
