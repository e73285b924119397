// The room of a screen of work, and screens whose texts are fitted into it.
#include "platform/fit.h"

#include "platform/contract.h"

namespace {

class FitTest : public ContractTest {
 protected:
  Screen screen{.name = "frmFit", .title = "Fit", .build = [](Screen& s) {
                  Add(s, {.name = "Label1", .caption = "&Speed", .labelFor = "Text1"});
                  Add(s, TextField("Text1"));
                  Add(s, Button("Command1", "&Go"));
                  Add(s, {.name = "Dial", .kind = ControlKind::Canvas, .minHeight = 40});
                  FitTexts(s, {.smallest = 0.5, .largest = 2, .canvas = "Dial"});
                }};
};

TEST_F(FitTest, RoomIsThatOfTheFrame) {
  const Room first = RoomForWork();
  EXPECT_GT(first.width, 100);
  EXPECT_GT(first.height, 100);
  CloseFrame(frame);
  frame.width += 1500;
  frame.height += 750;
  ShowFrame(frame);
  RunPending();
  EXPECT_EQ(RoomForWork().width, first.width + 100);
  EXPECT_EQ(RoomForWork().height, first.height + 50);
}

TEST_F(FitTest, RoomIsTheDesktopsWhileNoFrameIsShown) {
  const Room framed = RoomForWork();
  CloseFrame(frame);
  EXPECT_GT(RoomForWork().width, framed.width);
  EXPECT_GT(RoomForWork().height, framed.height);
}

TEST_F(FitTest, FittedScreenWorksLikeAnother) {
  ShowScreen(screen);
  RunPending();
  PressKey("Alt+S");
  TypeText("42");
  EXPECT_EQ(ShownText(screen, "Text1"), "42");
  EXPECT_GT(At(screen, "Dial").canvasHeight, 0);
  EXPECT_EQ(At(screen, "Text1").fontScale, 1) << "the record keeps what it was given";
}

TEST_F(FitTest, RangeHoldsUntilTheScreenIsUnloaded) {
  EXPECT_EQ(FitOf(screen).largest, 1);
  ShowScreen(screen);
  EXPECT_EQ(FitOf(screen).smallest, 0.5);
  EXPECT_EQ(FitOf(screen).largest, 2);
  EXPECT_EQ(FitOf(screen).canvas, "Dial");
  UnloadScreen(screen);
  RunPending();
  EXPECT_EQ(FitOf(screen).smallest, 1);
  EXPECT_EQ(FitOf(screen).largest, 1);
}

}  // namespace
