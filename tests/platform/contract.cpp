#include "platform/contract.h"

#include <utility>

namespace {

// Puts a line in front of a routine.
template <typename... Arguments, typename Line>
void Put(std::function<void(Arguments...)>& routine, Journal& journal, Line line) {
  routine = [before = std::move(routine), &journal, line](Arguments... arguments) {
    journal.push_back(line(arguments...));
    if (before) before(arguments...);
  };
}

std::string KeyText(const KeyEvent& event) {
  return (event.alt ? "alt+" : "") + std::string(event.ctrl ? "+" : "") + std::to_string(event.key);
}

}  // namespace

void KeepJournal(Screen& screen, Journal& journal) {
  ScreenEvents& on = screen.on;
  auto plain = [](std::string word) { return [word](Screen& s) { return word + " " + s.name; }; };
  auto ofControl = [](std::string word) {
    return [word](Screen&, Control& c) { return word + " " + c.name; };
  };
  Put(on.load, journal, plain("load"));
  Put(on.shown, journal, plain("shown"));
  Put(on.unload, journal, plain("unload"));
  Put(on.keyDown, journal, [](Screen&, KeyEvent& e) { return "down " + KeyText(e); });
  Put(on.keyUp, journal, [](Screen&, KeyEvent& e) { return "up " + KeyText(e); });
  Put(on.controlKeyDown, journal,
      [](Screen&, Control& c, KeyEvent& e) { return "down " + c.name + " " + KeyText(e); });
  Put(on.keyPress, journal, [](Screen&, Control& c, KeyPress& p) {
    return "press " + c.name + " " + std::to_string(p.character);
  });
  Put(on.gotFocus, journal, ofControl("got"));
  Put(on.lostFocus, journal, ofControl("lost"));
  Put(on.change, journal, [](Screen&, Control& c) { return "change " + c.name + " " + c.text; });
  Put(on.click, journal, ofControl("click"));
  Put(on.doubleClick, journal, ofControl("double"));
}
