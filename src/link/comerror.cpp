// The screens of a failed link: `helpfrm` with its two pages, and `frmerr`.
#include <string>
#include <string_view>

#include "core/numbers.h"
#include "link/comm.h"
#include "platform/loop.h"

namespace {

constexpr std::string_view pageOne =
    " This error is caused by a failure of the PC to communicate with the ZEM Unit.  Two "
    "conditions "
    "must\n\r"
    "  be examined to determine the cause:\n\r"
    "  1). Computer always displays COM or DEVICE I/O ERROR.\n\r"
    "       This may be caused by any of the following conditions:\n\r"
    "       a. ZEM not powered by at least 10 volts.\n\r"
    "       b. Communication cable disconnected or broken:\n\r"
    "           Check the hookup.\n\r"
    "               DB25-(white-3,red-2,black-7,jump 4-5)\n\r"
    "               DB9 -(white-2,red-3,black-5,jump 7-8)\n\r"
    "               ZEM -(white-TXD,red-RXD,black-GND\n\r"
    "       c. Serial port not configured as COM1 or 2, or no serial port.\n\r"
    "       d. Other Programs are currently using the same COM Port\n\r"
    "       e. Incompatible ground on ZEM or computer.  Try a 3 to 2 prong adapter on the computer "
    "or\n\r"
    "           ground the engine.\n\r"
    "       f. Computer has old +12v, -12v RS232 port that is incompatible with the 0 to 5 volt "
    "serial\n\r"
    "           data that ZEM uses.";

constexpr std::string_view pageTwo =
    "   2). Computer was communicating but failed while it was running.\n\r"
    "       This is usually caused by battery supply or noise problems:\n\r"
    "       a. Starter motor is poorly grounded back to battery causing excessive ground voltage "
    "at\n\r"
    "           the engine.\n\r"
    "       b. Sparkplug wires are too low resistance (5000 ohm per/foot minimum) causing "
    "excess\n\r"
    "           radiated interference.\n\r"
    "       c. Discharged, old or broken battery.  Intermittent or weak plates cause the voltage "
    "to drop\n\r"
    "           out intermittently forcing the ZEM into reset.\n\r"
    "       d. Other motors or solenoids running cause voltage spikes on the 12-volt battery "
    "supply.\n\r"
    "           Try separating circuits and switches; run relays and dedicated lines.\n\r"
    "       e. Alternator generates excessive noise.  Brushes and field controls on alternators "
    "generate\n\r"
    "           radiated interference.  Try disconnecting the alternator. Add filter capacitors\n\r"
    "           (20,000 MFD, 20 WVDC minimum).";

void BuildComError(Screen& screen) {
  Add(screen, {.name = "Reason",
               .kind = ControlKind::Label,
               .caption = PortTrouble,
               .bold = true,
               .visible = !PortTrouble.empty(),
               .wrap = true});
  Add(screen, {.name = "Label1", .kind = ControlKind::Label, .caption = std::string(pageOne)});
  Add(screen, {.name = "Buttons", .kind = ControlKind::Row});
  const Place below{.in = "Buttons"};
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "Retry COM Port",
               .place = below});
  Add(screen, {.name = "Command2",
               .kind = ControlKind::Button,
               .caption = "Cancel Session",
               .place = below});
  Add(screen, {.name = "Command3",
               .kind = ControlKind::Button,
               .caption = "View Page Two",
               .place = below});
}

void Answered(int choice) {
  DialogChoice = choice;
  RefreshStatusLine();
}

void FlipPage(Screen& screen) {
  Control& text = At(screen, "Label1");
  SetCaption(text, std::string(text.caption == pageOne ? pageTwo : pageOne));
}

void ComErrorClick(Screen& screen, Control& control) {
  if (control.name == "Command1") Answered(RetryComPort);
  if (control.name == "Command2") Answered(CancelSession);
  if (control.name == "Command3") FlipPage(screen);
}

void BuildRefused(Screen& screen) {
  Add(screen, {.name = "Row1", .kind = ControlKind::Row});
  Add(screen, {.name = "Picture1",
               .kind = ControlKind::Picture,
               .place = {.in = "Row1"},
               .icon = "warning",
               .accessibleName = "Warning"});
  Add(screen, {.name = "Label1",
               .kind = ControlKind::Label,
               .caption = " DATA NOT ACCEPTED",
               .place = {.in = "Row1"},
               .fontScale = 1.3,
               .bold = true,
               .foreColour = Red});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "Please Enter Data Again",
               .place = {.align = Align::Centre}});
}

}  // namespace

Screen helpfrm{.name = "helpfrm",
               .placement = ScreenPlacement::Dialog,
               .build = BuildComError,
               .on = {.click = ComErrorClick},
               .cancelButton = "Command2",
               .defaultFocus = "Command1"};

Screen frmerr{.name = "frmerr",
              .title = "Halvane2",
              .placement = ScreenPlacement::Dialog,
              .build = BuildRefused,
              .on = {.click =
                         [](Screen& screen, Control& control) {
                           if (control.name == "Command1") UnloadScreen(screen);
                         }},
              .cancelButton = "Command1"};

void ComErrorDialog() {
  UnloadScreen(helpfrm);
  helpfrm.title = "Halvane2  -  COM ERROR  " + NumberText(CommError);
  DialogChoice = 0;
  ShowScreen(helpfrm);
  while (DialogChoice == 0 && !ProgramEnding() && IsUp(helpfrm)) Yield();
  if (DialogChoice == 0) DialogChoice = CancelSession;
  UnloadScreen(helpfrm);
}
