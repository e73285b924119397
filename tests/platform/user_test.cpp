// The test user reaches a screen, and what it shows can be read back.
#include "support/user.h"

#include "platform/frame.h"

namespace {

class UserTest : public PlatformTest {
 protected:
  Screen screen{.name = "frmUser", .build = [](Screen& s) {
                  Add(s, {.name = "Text1", .kind = ControlKind::TextField});
                  Add(s, {.name = "Command1", .kind = ControlKind::Button, .caption = "&Go"});
                }};
};

TEST_F(UserTest, TypedTextStandsInTheFocusedField) {
  ShowScreen(screen);
  TypeText("12.5");
  PressKey("Backspace");
  EXPECT_EQ(At(screen, "Text1").text, "12.");
  EXPECT_EQ(ShownText(screen, "Text1"), "12.");
  EXPECT_EQ(ShownFocus(), "Text1");
}

TEST_F(UserTest, AltLetterClicksTheButton) {
  int clicks = 0;
  screen.on.click = [&](Screen&, Control& control) { clicks += control.name == "Command1"; };
  ShowScreen(screen);
  PressKey("Alt+G");
  EXPECT_EQ(clicks, 1);
}

}  // namespace
