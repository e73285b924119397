// Colours of the records on light and dark desktops.
#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QWidget>

#include "platform/contract.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtstyle.h"

namespace {

double Brightness(const QColor& colour) {
  return 0.299 * colour.redF() + 0.587 * colour.greenF() + 0.114 * colour.blueF();
}

QPalette DarkPalette() {
  QPalette dark(QColor(50, 50, 50), QColor(40, 40, 40));
  dark.setColor(QPalette::Base, QColor(25, 25, 25));
  dark.setColor(QPalette::Text, Qt::white);
  dark.setColor(QPalette::WindowText, Qt::white);
  dark.setColor(QPalette::ButtonText, Qt::white);
  return dark;
}

class ColoursQtTest : public ContractTest {
 protected:
  void TearDown() override {
    QApplication::setPalette(QPalette());
    ContractTest::TearDown();
  }
  QImage Picture(const std::string& name) {
    RunPending();
    return WidgetOf(At(screen, name))->grab().toImage();
  }
  // The ground beside the text, and the darkest and brightest pixel.
  QColor Ground(const std::string& name) {
    QImage picture = Picture(name);
    return picture.pixelColor(picture.width() - 5, picture.height() / 2);
  }
  double Contrast(const std::string& name) {
    QImage picture = Picture(name);
    double least = 1, most = 0;
    for (int y = 2; y < picture.height() - 2; ++y)
      for (int x = 2; x < picture.width() - 2; ++x) {
        double brightness = Brightness(picture.pixelColor(x, y));
        least = std::min(least, brightness);
        most = std::max(most, brightness);
      }
    return most - least;
  }

  Screen screen{
      .name = "frmColours", .build = [](Screen& s) {
        Add(s, {.name = "Label1", .caption = "HHHHHHHH", .widthChars = 14, .bold = true});
        Add(s, {.name = "Text1", .kind = ControlKind::TextField, .text = "HHHH", .widthChars = 12});
        Add(s, Button("Command1", "HHHH"));
        Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 80, .minHeight = 40});
      }};
};

TEST_F(ColoursQtTest, HighlightedCaptionIsWhiteAndGoesBack) {
  ShowScreen(screen);
  QColor plain = Ground("Label1");
  SetBackColour(At(screen, "Label1"), White);
  EXPECT_EQ(Ground("Label1"), QColor(Qt::white));
  SetBackColour(At(screen, "Label1"), SystemButtonFace);
  EXPECT_EQ(Ground("Label1"), plain);
}

TEST_F(ColoursQtTest, YellowFieldIsYellowAndGoesBack) {
  ShowScreen(screen);
  SetBackColour(At(screen, "Text1"), Yellow);
  EXPECT_EQ(Ground("Text1"), QColor(255, 255, 0));
  SetBackColour(At(screen, "Text1"), SystemWindow);
  EXPECT_EQ(Ground("Text1"), QApplication::palette().color(QPalette::Base));
}

TEST_F(ColoursQtTest, ExplicitGroundsAreReadableOnADarkDesktop) {
  QApplication::setPalette(DarkPalette());
  ShowScreen(screen);
  for (Colour ground : {White, Yellow, Black, Red, Blue}) {
    for (const char* name : {"Label1", "Text1", "Command1"}) {
      SetBackColour(At(screen, name), ground);
      EXPECT_GT(Contrast(name), 0.35) << name << " on " << ground;
    }
  }
}

TEST_F(ColoursQtTest, RolesFollowTheDesktopWhileTheScreenIsShown) {
  ShowScreen(screen);
  ClearCanvas(At(screen, "Canvas1"), SystemWindow);
  SetBackColour(At(screen, "Label1"), White);
  RunPending();
  QApplication::setPalette(DarkPalette());
  RunPending();
  EXPECT_LT(Brightness(Ground("Text1")), 0.3);
  EXPECT_LT(Brightness(Ground("Canvas1")), 0.3);
  EXPECT_EQ(Ground("Label1"), QColor(Qt::white));
  EXPECT_GT(Contrast("Label1"), 0.5);
}

TEST_F(ColoursQtTest, LabelsOnAColouredScreenCanBeRead) {
  screen.backColour = Black;
  ShowScreen(screen);
  EXPECT_EQ(Ground("Label1"), QColor(Qt::black));
  EXPECT_GT(Contrast("Label1"), 0.5);
}

TEST_F(ColoursQtTest, DisabledTextIsGreyOnAnyGround) {
  ShowScreen(screen);
  SetBackColour(At(screen, "Text1"), White);
  double usable = Contrast("Text1");
  SetEnabled(At(screen, "Text1"), false);
  EXPECT_LT(Contrast("Text1"), usable);
}

TEST_F(ColoursQtTest, MarkOfADisabledButtonIsGreyOnAColouredScreen) {
  screen.backColour = Yellow;
  screen.build = [](Screen& s) {
    Add(s, {.name = "Option1",
            .kind = ControlKind::RadioButton,
            .caption = "",
            .widthChars = 4,
            .checked = true});
  };
  ShowScreen(screen);
  const double usable = Contrast("Option1");
  SetEnabled(At(screen, "Option1"), false);
  EXPECT_LT(Contrast("Option1"), usable - 0.1);
  const QPalette shown = WidgetOf(At(screen, "Option1"))->palette();
  for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
    EXPECT_EQ(shown.color(group, QPalette::Text),
              QApplication::palette().color(group, QPalette::Text));
}

}  // namespace
