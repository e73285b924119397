// An editor screen as rows: fields, shown values, lists, ON/OFF pairs, buttons. What is special
// about a screen is a routine of its own, hooked in by its row. editcycle.h works all rows.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/screen.h"

struct Editor;

// A number of a row, fixed or looked up each time it is needed.
class Bound {
 public:
  Bound(double fixed) : fixed_(fixed) {}
  template <std::convertible_to<double (*)()> Routine>
  Bound(Routine routine) : routine_(routine) {}
  double operator()() const { return routine_ ? routine_() : fixed_; }

 private:
  double fixed_ = 0;
  double (*routine_)() = nullptr;
};

// A text of a row, fixed or made each time it is needed.
class Words {
 public:
  Words() = default;
  Words(const char* fixed) : fixed_(fixed) {}
  Words(std::string fixed) : fixed_(std::move(fixed)) {}
  template <std::convertible_to<std::string (*)()> Routine>
  Words(Routine routine) : routine_(routine) {}
  std::string operator()() const { return routine_ ? routine_() : fixed_; }
  bool Empty() const { return !routine_ && fixed_.empty(); }

 private:
  std::string fixed_;
  std::string (*routine_)() = nullptr;
};

inline constexpr int NoCalValue = -1;
inline constexpr int NoImageByte = -1;

// What follows the message that an entry was refused.
enum class AfterRefusal {
  Reinit,         // the field has the focus, its text selected
  GotFocusAgain,  // the got-focus step runs again
  MessageOnly,    // nothing
  HoldFocus,      // as Reinit, and the focus stays until a good value is entered
};

// A field that takes an entry. A table cell is a row like any other; its rows are generated.
struct EditorField {
  int number = 0;       // in ActiveField; unique on the screen
  std::string control;  // "Text2", "Table_VE(12)"
  std::string label;    // control of the caption, shared or its own; "" has none to highlight
  Words caption;        // with its "&"; only the first row of a shared label has it
  Words unit;           // stands behind the field
  std::string group;    // titled frame around it, "" is the screen's main group

  int calIndex = NoCalValue;
  std::string mask;          // of Format; "" is the plain text of the number
  bool wholeNumber = false;  // a period is refused
  bool takesMinus = false;
  Bound low = 0;  // both ends are inside
  Bound high = 0;
  Words rangeText;           // second line of the message
  Words refusal;             // whole message instead of "Data Input Error" and the range text
  std::string refusalTitle;  // of the box that refuses
  bool asTyped = false;  // the stored value is reckoned from the number before the mask rounds it
  int widthChars = 9;
  AfterRefusal afterRefusal = AfterRefusal::Reinit;

  // Between the entry and CalValues; plain when null.
  double (*toStored)(double entry) = nullptr;
  double (*toShown)(double stored) = nullptr;

  // ONFLY path: the image byte, and how a stored value is encoded there; null is the encoder's way.
  int imageByte = NoImageByte;
  int byteCount = 1;
  int (*encode)(double stored) = nullptr;

  // Hooks, each may be null.
  std::string (*show)(const EditorField&) = nullptr;  // text instead of the one from CalValues
  // Ends an entry quietly before it is judged when it returns true.
  bool (*claims)(Editor&, const EditorField&, const std::string& entry) = nullptr;
  // Judges an entry besides its range; a message refuses it.
  std::optional<std::string> (*check)(Editor&, const EditorField&, double entry) = nullptr;
  // Stores instead of CalValues[calIndex]; not called when the write is posted.
  void (*store)(Editor&, const EditorField&, double stored) = nullptr;
  // After storing or posting, before reinit and redraw.
  void (*accepted)(Editor&, const EditorField&, double stored) = nullptr;
  void (*refused)(Editor&, const EditorField&) = nullptr;  // after the message and what follows it
  // Validate step: the focus leaves the field and nothing is pending.
  void (*leaving)(Editor&, const EditorField&) = nullptr;

  std::string helpTopic;  // "" is screen and control, "Binj_graph.Text2"
};

// A value that is only shown.
struct EditorValue {
  std::string control;
  std::string label;
  Words caption;
  Words unit;
  std::string group;
  std::string (*show)() = nullptr;
  int widthChars = 9;
};

// A drop-down list: moving in it leaves the choice pending, Enter takes it.
struct EditorList {
  int number = 0;
  std::string control;
  std::string label;
  Words caption;
  Words unit;  // words behind the list
  std::string group;
  std::vector<std::string> items;
  int (*index)() = nullptr;    // shown by the redraw; -1 is none
  bool flips = false;          // two items: click and Down show the other one
  bool movingIsChange = true;  // CalChanged is set when it moves, not only by `enter`
  void (*enter)(Editor&, const EditorList&, int index) = nullptr;  // EntryPending is 0 already
  bool redrawsOnEnter = true;
  std::string helpTopic;
};

// Two radio buttons for a flag. Its highlight follows the chosen one.
struct EditorPair {
  std::string label;
  Words caption;
  std::string group;
  std::string onControl;
  std::string onCaption = "ON";
  std::string offControl;
  std::string offCaption = "OFF";
  Colour onColour = White;
  Colour offColour = White;
  bool (*isOn)() = nullptr;
  void (*choose)(Editor&, const EditorPair&, bool on) = nullptr;
};

struct EditorButton {
  std::string control;
  Words caption;
  std::string icon;   // picture beside it, which does the same; "" has none
  std::string opens;  // closes this screen and opens that one; grey until registered
  bool offInOnflySession = false;
  void (*click)(Editor&, const EditorButton&) = nullptr;  // instead of opening
  std::string helpTopic;
};

// Where Back leads: a screen, and the button on it that gets the focus, by name or by caption.
struct BackTarget {
  std::string screen = "CSForm1";
  std::string button;
};

// Fields of an array, "Table_VE(1)" to "Table_VE(64)": the pattern with its control's name, number,
// element of CalValues and image byte counted up. The pattern's own are those of the first one; its
// control is the name in front of the bracket.
std::vector<EditorField> FieldArray(const EditorField& pattern, int firstIndex, int count);

// A flag of CalValues[0] as an ON/OFF pair reads and flips it.
bool OptionIsSet(int mask);
// Flips the bit if it differs and sets CalChanged then. Fails with overflow (6) beyond 16 bits.
void ChooseOption(int mask, bool on);
