// From rows to controls, and from controls back to rows.
#include "editors/editlayout.h"

#include <algorithm>
#include <string>

namespace {

constexpr const char* unitSuffix = "Unit";
constexpr const char* pictureSuffix = "Picture";

void AddLabel(Editor& editor, const std::string& name, const Words& words, const Place& place,
              const std::string& labelFor = {}) {
  if (name.empty() || words.Empty() || Find(editor.screen, name)) return;
  Add(editor.screen, {.name = name,
                      .kind = ControlKind::Label,
                      .caption = words(),
                      .place = place,
                      .labelFor = labelFor});
}

// The caption in front and the words behind of a row.
template <typename Row>
void AddWordsAround(Editor& editor, const Row& row, const GridCursor& cursor) {
  AddLabel(editor, row.label, row.caption,
           {.in = cursor.container, .row = cursor.row, .column = 0, .align = Align::Fill},
           row.control);
  AddLabel(editor, row.control + unitSuffix, row.unit,
           {.in = cursor.container, .row = cursor.row, .column = 2, .align = Align::Left});
}

Place ControlPlace(const GridCursor& cursor) {
  return {.in = cursor.container, .row = cursor.row, .column = 1, .align = Align::Fill};
}

template <typename Row>
void NoteGroup(std::vector<std::string>& groups, const std::vector<Row>& rows) {
  for (const Row& row : rows)
    if (std::find(groups.begin(), groups.end(), row.group) == groups.end())
      groups.push_back(row.group);
}

void AddRadio(Editor& editor, const std::string& name, const std::string& caption,
              const std::string& container) {
  Add(editor.screen, {.name = name,
                      .kind = ControlKind::RadioButton,
                      .caption = caption,
                      .place = {.in = container}});
}

void Keep(Editor& editor, const std::string& name, Editor::Kind kind, std::size_t row) {
  if (Control* control = Find(editor.screen, name)) editor.places[control] = {kind, row};
}

void Rewrite(Editor& editor, const std::string& name, const Words& words) {
  if (name.empty() || words.Empty()) return;
  if (Control* control = Find(editor.screen, name)) SetCaption(*control, words());
}

template <typename Row>
void RewriteRows(Editor& editor, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    Rewrite(editor, row.label, row.caption);
    Rewrite(editor, row.control + unitSuffix, row.unit);
  }
}

}  // namespace

// ---- rows ---------------------------------------------------------------------------------------

void AddField(Editor& editor, const EditorField& row, GridCursor& cursor) {
  AddWordsAround(editor, row, cursor);
  AddCell(editor, row, cursor.container, cursor.row, 1);
  ++cursor.row;
}

void AddCell(Editor& editor, const EditorField& row, const std::string& container, int gridRow,
             int gridColumn) {
  Add(editor.screen,
      {.name = row.control,
       .kind = ControlKind::TextField,
       .place = {.in = container, .row = gridRow, .column = gridColumn, .align = Align::Fill},
       .widthChars = row.widthChars,
       .accessibleName = row.caption.Empty() ? "" : PlainCaption(row.caption())});
}

void AddShown(Editor& editor, const EditorValue& row, GridCursor& cursor) {
  AddWordsAround(editor, row, cursor);
  Add(editor.screen, {.name = row.control,
                      .kind = ControlKind::Label,
                      .place = ControlPlace(cursor),
                      .widthChars = row.widthChars,
                      .framed = true});
  ++cursor.row;
}

void AddList(Editor& editor, const EditorList& row, GridCursor& cursor) {
  AddWordsAround(editor, row, cursor);
  Add(editor.screen, {.name = row.control,
                      .kind = ControlKind::DropDownList,
                      .place = ControlPlace(cursor),
                      .items = row.items,
                      .accessibleName = row.caption.Empty() ? "" : PlainCaption(row.caption())});
  ++cursor.row;
}

void AddPair(Editor& editor, const EditorPair& row, GridCursor& cursor) {
  AddLabel(editor, row.label, row.caption,
           {.in = cursor.container, .row = cursor.row, .column = 0, .align = Align::Fill},
           row.onControl);
  const std::string container = row.onControl + row.offControl + "Row";
  Add(editor.screen, {.name = container,
                      .kind = ControlKind::Row,
                      .place = {.in = cursor.container,
                                .row = cursor.row,
                                .column = 1,
                                .columnSpan = 2,
                                .align = Align::Left}});
  AddRadio(editor, row.onControl, row.onCaption, container);
  AddRadio(editor, row.offControl, row.offCaption, container);
  ++cursor.row;
}

void AddGap(Editor& editor, GridCursor& cursor) {
  Add(editor.screen, {.name = cursor.container + "Gap" + std::to_string(cursor.row),
                      .kind = ControlKind::Label,
                      .place = {.in = cursor.container, .row = cursor.row, .column = 0},
                      .fontScale = 0.5});
  ++cursor.row;
}

void AddGroupRows(Editor& editor, const std::string& group, GridCursor& cursor) {
  for (const EditorPair& row : editor.pairs)
    if (row.group == group) AddPair(editor, row, cursor);
  for (const EditorField& row : editor.fields)
    if (row.group == group) AddField(editor, row, cursor);
  for (const EditorValue& row : editor.shown)
    if (row.group == group) AddShown(editor, row, cursor);
  for (const EditorList& row : editor.lists)
    if (row.group == group) AddList(editor, row, cursor);
}

void AddButton(Editor& editor, const EditorButton& row, const std::string& container) {
  if (!row.icon.empty())
    Add(editor.screen, {.name = row.control + pictureSuffix,
                        .kind = ControlKind::Picture,
                        .place = {.in = container},
                        .icon = row.icon,
                        .accessibleName = PlainCaption(row.caption())});
  Add(editor.screen, {.name = row.control,
                      .kind = ControlKind::Button,
                      .caption = row.caption(),
                      .place = {.in = container}});
}

// ---- the whole ----------------------------------------------------------------------------------

void AddStandingLines(Editor& editor, const std::string& container) {
  const Place place{.in = container, .align = Align::Left};
  AddLabel(editor, "HelpLine", editor.helpLine, place);
  AddLabel(editor, "SaveLine", editor.saveLine, place);
  if (HasOnflyFields(editor)) AddLabel(editor, "OnflyLine", editor.onflyLine, place);
  AddLabel(editor, "FixedLine", editor.fixedLine, place);
}

void AddFoot(Editor& editor) {
  Screen& screen = editor.screen;
  Add(screen, {.name = "FootSpace", .kind = ControlKind::Spacer});
  Add(screen, {.name = "Foot", .kind = ControlKind::Row});
  Add(screen, {.name = "Lines", .kind = ControlKind::Column, .place = {.in = "Foot"}});
  AddStandingLines(editor, "Lines");
  Add(screen, {.name = "FootGap", .kind = ControlKind::Spacer, .place = {.in = "Foot"}});
  for (const EditorButton& row : editor.buttons) AddButton(editor, row, "Foot");
  Add(screen, {.name = editor.backButton,
               .kind = ControlKind::Button,
               .caption = editor.backCaption,
               .place = {.in = "Foot"}});
}

void BuildEditor(Editor& editor) {
  for (const std::string& group : GroupsOf(editor)) {
    const std::string name = "Group" + group;
    Add(editor.screen, {.name = name,
                        .kind = group.empty() ? ControlKind::Grid : ControlKind::Group,
                        .caption = group,
                        .place = {.align = Align::Left}});
    GridCursor cursor{.container = name};
    AddGroupRows(editor, group, cursor);
  }
  AddFoot(editor);
}

std::vector<std::string> GroupsOf(const Editor& editor) {
  std::vector<std::string> groups;
  NoteGroup(groups, editor.pairs);
  NoteGroup(groups, editor.fields);
  NoteGroup(groups, editor.shown);
  NoteGroup(groups, editor.lists);
  return groups;
}

bool HasOnflyFields(const Editor& editor) {
  return std::any_of(editor.fields.begin(), editor.fields.end(),
                     [](const EditorField& row) { return row.imageByte != NoImageByte; });
}

// ---- from controls to rows ----------------------------------------------------------------------

void IndexControls(Editor& editor) {
  using Kind = Editor::Kind;
  editor.places.clear();
  editor.fieldControls.clear();
  editor.listControls.clear();
  editor.writtenTexts.assign(editor.fields.size(), {});
  editor.shownIndex.assign(editor.lists.size(), -1);
  for (std::size_t i = 0; i < editor.fields.size(); ++i) {
    Control& control = At(editor.screen, editor.fields[i].control);
    editor.fieldControls.push_back(&control);
    editor.places[&control] = {Kind::Field, i};
  }
  for (std::size_t i = 0; i < editor.lists.size(); ++i) {
    Control& control = At(editor.screen, editor.lists[i].control);
    editor.listControls.push_back(&control);
    editor.places[&control] = {Kind::List, i};
  }
  for (std::size_t i = 0; i < editor.pairs.size(); ++i) {
    Keep(editor, editor.pairs[i].onControl, Kind::OnOption, i);
    Keep(editor, editor.pairs[i].offControl, Kind::OffOption, i);
  }
  for (std::size_t i = 0; i < editor.buttons.size(); ++i) {
    Keep(editor, editor.buttons[i].control, Kind::Button, i);
    Keep(editor, editor.buttons[i].control + pictureSuffix, Kind::Picture, i);
  }
  Keep(editor, editor.backButton, Kind::Back, 0);
}

void RewriteCaptions(Editor& editor) {
  RewriteRows(editor, editor.fields);
  RewriteRows(editor, editor.shown);
  RewriteRows(editor, editor.lists);
}
