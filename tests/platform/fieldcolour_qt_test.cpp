// The ground of fields on the desktop: that of windows by itself, that of buttons when a screen
// sets it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QWidget>

#include "platform/contract.h"

namespace {

class FieldColourTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    screen.build = [](Screen& built) { Add(built, TextField("Text1")); };
    ShowScreen(screen);
    RunPending();
  }
  static QColor GroundOfField() {
    for (QWidget* widget : QApplication::allWidgets())
      if (widget->objectName() == "Text1") return widget->palette().color(QPalette::Base);
    ADD_FAILURE() << "no widget for Text1";
    return {};
  }

  Screen screen{.name = "Fields"};
};

}  // namespace

TEST_F(FieldColourTest, AFieldStandsOnTheColourOfWindows) {
  EXPECT_EQ(GroundOfField(), QApplication::palette().color(QPalette::Base));
}

TEST_F(FieldColourTest, AFieldCanHaveTheColourOfButtons) {
  SetBackColour(At(screen, "Text1"), SystemButtonFace);
  RunPending();
  EXPECT_EQ(GroundOfField(), QApplication::palette().color(QPalette::Window));
  EXPECT_NE(GroundOfField(), QApplication::palette().color(QPalette::Base));
  SetBackColour(At(screen, "Text1"), SystemWindow);
  RunPending();
  EXPECT_EQ(GroundOfField(), QApplication::palette().color(QPalette::Base));
}
