// Where the user has moved the frame and small windows to.
#include "platform/contract.h"
#include "platform/headless/script.h"

namespace {

class PlaceTest : public ContractTest {
 protected:
  Screen graph{.name = "graph",
               .placement = ScreenPlacement::Child,
               .build = [](Screen& s) { Add(s, TextField("Text1")); },
               .left = 300,
               .top = 450};
};

TEST_F(PlaceTest, FrameStandsWhereItsRecordSaysUntilItIsMoved) {
  frame.left = 1200;
  ReadFramePlace(frame);
  EXPECT_EQ(frame.left, 1200);
  HeadlessMoveFrame(100, 200, 3000, 4000);
  EXPECT_EQ(frame.left, 1200) << "the record follows when it is asked for";
  ReadFramePlace(frame);
  EXPECT_EQ(frame.left, 100);
  EXPECT_EQ(frame.top, 200);
  EXPECT_EQ(frame.width, 3000);
  EXPECT_EQ(frame.height, 4000);
  EXPECT_FALSE(frame.minimised);
  HeadlessMinimiseFrame(true);
  ReadFramePlace(frame);
  EXPECT_TRUE(frame.minimised);
}

TEST_F(PlaceTest, SmallWindowKeepsThePlaceItWasMovedTo) {
  ShowScreen(graph);
  EXPECT_EQ(graph.left, 300);
  HeadlessMoveScreen(graph, 1440, 720);
  HideScreen(graph);
  ShowScreen(graph);
  EXPECT_EQ(graph.left, 1440);
  EXPECT_EQ(graph.top, 720);
}

}  // namespace
