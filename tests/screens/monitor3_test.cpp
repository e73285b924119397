// The digital monitor as its user meets it, by keys and clicks, on both platforms; without a unit.
#include "monitors/monitor3.h"

#include "screens/monitorscreens.h"

namespace {

class Monitor3Screen : public MonitorScreenTest {
 protected:
  void SetUp() override {
    MonitorScreenTest::SetUp();
    Start();
  }
  void Show() {
    ShowScreen(Monitor3);
    RunPending();
  }
};

}  // namespace

TEST_F(Monitor3Screen, CaptionsAndUnitsStandAroundTheFigures) {
  Show();
  for (const LiveFigure& figure : Monitor3Figures()) {
    const std::string name(figure.control);
    EXPECT_EQ(ShownText(Monitor3, name + "Caption"), figure.caption);
    EXPECT_EQ(ShownText(Monitor3, name + "Unit"), FigureUnit(figure));
    EXPECT_EQ(ShownText(Monitor3, name), "");
  }
  EXPECT_EQ(ShownText(Monitor3, "Command1"), "EXIT");
  EXPECT_EQ(Monitor3.title, "Click Form to Activate Keys    \"F1\" For Help");
}

TEST_F(Monitor3Screen, LettersToggleInUpperAndLowerCase) {
  Show();
  TypeText("t");
  EXPECT_TRUE(ImperialUnits);
  TypeText("T");
  EXPECT_FALSE(ImperialUnits);
  ExpectLettersToggle();
}

TEST_F(Monitor3Screen, EnterDoesNotPressExit) {
  Monitor3KeyCode = 0;
  Show();
  PressKey("Enter");
  EXPECT_EQ(Monitor3KeyCode, 13);
  EXPECT_TRUE(Monitor3.visible);
}

TEST_F(Monitor3Screen, F1OpensThePanelAndEscClosesIt) {
  Show();
  PressKey("F1");
  RunPending();
  ASSERT_TRUE(Monitor3Help.visible);
  EXPECT_EQ(ShownText(Monitor3Help, "Label1"), "C = Toggle between Open Loop and Close Loop");
  PressKey("Esc");
  RunPending();
  EXPECT_FALSE(Monitor3Help.loaded);
  EXPECT_TRUE(Monitor3.visible);
}

TEST_F(Monitor3Screen, WithoutAPortTheFailureScreenComesAndCancelReturnsToTheMainMenu) {
  ExpectFailureAndBack(Monitor3, 1, [] { EXPECT_FALSE(ShownEnabled(Form1, "SoftwareTools")); });
  EXPECT_TRUE(ShownEnabled(Form1, "SoftwareTools"));
}
