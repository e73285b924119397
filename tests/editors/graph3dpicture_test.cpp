// The pictures of the 3D graph, primitive by primitive, against those that are stored. After a
// wished change, look at the graph, then write the files anew: HALVANE2_WRITE_PICTURES=1
// test_editors. A run that writes fails, so that none passes by accident.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "editors/graph3d.h"
#include "editors/graphcaption.h"
#include "editors/surface.h"
#include "platform/headless/script.h"
#include "support/keynames.h"

namespace {

constexpr const char* kindNames[] = {"line", "polyline", "circle",    "disc",
                                     "arc",  "polygon",  "rectangle", "text"};

// "-0" and "0" are the same place.
std::string Rounded(double number) {
  std::ostringstream text;
  double hundredths = std::round(number * 100);
  text << std::fixed << std::setprecision(2) << (hundredths == 0 ? 0 : hundredths / 100);
  return text.str();
}

std::string LineOf(const Primitive& one) {
  std::ostringstream line;
  line << kindNames[static_cast<std::size_t>(one.kind)] << " #" << std::hex << std::setfill('0')
       << std::setw(6) << one.stroke.colour << std::dec << " w" << one.stroke.width;
  if (one.stroke.dashed) line << " dashed";
  if (one.stroke.antialias) line << " smooth";
  for (Point point : one.points) line << " " << Rounded(point.x) << "," << Rounded(point.y);
  if (one.radius > 0) line << " r" << Rounded(one.radius);
  if (one.kind == PrimitiveKind::Text)
    line << " " << (one.bold ? "bold " : "") << "lcr"[static_cast<int>(one.anchor)] << " \""
         << one.text << "\"";
  return line.str();
}

std::string PictureText() {
  const Drawing& drawing = At(Graph3D, "Picture1").drawing;
  std::string text;
  for (const Primitive& one : drawing.primitives) text += LineOf(one) + "\n";
  return text;
}

// A hill over the middle of the table, in the range of each.
void FillTables() {
  constexpr std::array<float, 8> speeds = {800, 1500, 2200, 3000, 3800, 4600, 5400, 6200};
  constexpr std::array<float, 8> loads = {20, 30, 40, 50, 60, 70, 85, 100};
  std::copy(speeds.begin(), speeds.end(), &CalValues[45]);
  std::copy(loads.begin(), loads.end(), &CalValues[53]);
  for (std::size_t cell = 1; cell <= 64; ++cell) {
    const int row = static_cast<int>((cell - 1) / 8), column = static_cast<int>((cell - 1) % 8);
    const int hill = 16 - (row - 4) * (row - 4) - (column - 3) * (column - 3);
    CalValues[124 + cell] = static_cast<float>(hill) / 100;
    CalValues[60 + cell] = static_cast<float>(10 + 2 * column - row);
    CalValues[260 + cell] = static_cast<float>(2 * row + 4 * column);
    CalValues[344 + cell] =
        14.64F - 0.05F * static_cast<float>(row) + 0.02F * static_cast<float>(column);
  }
  CalValues[3] = 12;
  CalValues[4] = 6800;
  CalValues[9] = 14;
  PublishCalGlobals();
  ComputeInjectorLimits();
  CopyTablesToWork();
}

struct PictureCase {
  const char* name;
  int table;
  int view;
  int width;
  int height;
};

class Graph3DLabels : public testing::Test {
 protected:
  void SetUp() override {
    ResetHeadless();
    ResetCalibrationState();
    ResetTableViews();
    FillTables();
    RegisterGraph3D();
  }
  void TearDown() override {
    UnloadAllScreens();
    ForgetRegisteredScreens();
    ResetCalibrationState();
    ResetTableViews();
    ResetHeadless();
  }
};

class Graph3DPicture : public Graph3DLabels, public testing::WithParamInterface<PictureCase> {};

}  // namespace

TEST_P(Graph3DPicture, IsTheStoredOne) {
  const PictureCase& one = GetParam();
  SelectedTable = one.table;
  VeView = one.view;
  BuildTableViews();
  OpenScreen("Graph3D");
  ResizeCanvas(At(Graph3D, "Picture1"), one.width, one.height);
  for (const char* key : {"Right", "Right", "Right", "Right", "Right", "Up", "Up", "Up"})
    HeadlessKey(KeyNamed(key));
  RunUntilIdle();
  const std::string drawn = PictureText();
  ASSERT_GT(drawn.size(), 1000U);

  const std::string path = std::string(HALVANE2_PICTURES) + "/" + one.name + ".txt";
  if (std::getenv("HALVANE2_WRITE_PICTURES")) {
    std::ofstream(path) << drawn;
    FAIL() << "written anew: " << path;
  }
  std::ifstream file(path);
  ASSERT_TRUE(file) << "there is no " << path;
  std::stringstream stored;
  stored << file.rdbuf();
  std::istringstream drawnLines(drawn);
  int number = 0;
  for (std::string expected, line; std::getline(stored, expected);) {
    ++number;
    ASSERT_TRUE(std::getline(drawnLines, line)) << "the picture ends before line " << number;
    ASSERT_EQ(line, expected) << path << ":" << number;
  }
  std::string more;
  EXPECT_FALSE(std::getline(drawnLines, more)) << "the picture has more than " << path;
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, Graph3DPicture,
    testing::Values(PictureCase{"graph3d-ve-640x480", TableVe, 0, 640, 480},
                    PictureCase{"graph3d-ve-1920x1080", TableVe, 0, 1920, 1080},
                    PictureCase{"graph3d-duty-640x480", TableVe, 2, 640, 480},
                    PictureCase{"graph3d-airfuel-640x480", TableAirFuel, 0, 640, 480}),
    [](const auto& tested) {
      std::string name = tested.param.name;
      std::erase(name, '-');
      return name;
    });

namespace {

struct Box {
  double left, top, right, bottom;
};

Box BoxOfText(const Primitive& text) {
  const TextSize size = MeasureText(text.text, text.pointSize, text.bold);
  const double shares[] = {0, 0.5, 1};
  const double left = text.points[0].x - size.width * shares[static_cast<std::size_t>(text.anchor)];
  return {left, text.points[0].y - size.height / 2, left + size.width,
          text.points[0].y + size.height / 2};
}

}  // namespace

TEST_F(Graph3DLabels, TextsStandInsideAndApartAtEverySize) {
  OpenScreen("Graph3D");
  for (auto [width, height] : {std::pair{540, 300},
                               {620, 380},
                               {640, 480},
                               {800, 500},
                               {1000, 560},
                               {1280, 800},
                               {1900, 900},
                               {1920, 1080},
                               {700, 1000}})
    for (auto [table, view] : {std::pair{0, 0}, {0, 1}, {0, 2}, {1, 0}, {2, 0}, {3, 0}}) {
      SelectedTable = table;
      VeView = view;
      BuildTableViews();
      Control& canvas = At(Graph3D, "Picture1");
      ResizeCanvas(canvas, width, height);
      GraphDims();
      PlotData();
      std::vector<std::pair<std::string, Box>> texts;
      for (const Primitive& one : canvas.drawing.primitives)
        if (one.kind == PrimitiveKind::Text) texts.push_back({one.text, BoxOfText(one)});
      for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto& [text, box] = texts[i];
        SCOPED_TRACE(text + " at " + std::to_string(width) + "x" + std::to_string(height));
        EXPECT_GE(box.left, 0);
        EXPECT_GE(box.top, 0);
        EXPECT_LE(box.right, width);
        EXPECT_LE(box.bottom, height);
        for (std::size_t j = 0; j < i; ++j) {
          const Box& other = texts[j].second;
          EXPECT_FALSE(box.left < other.right && other.left < box.right && box.top < other.bottom &&
                       other.top < box.bottom)
              << texts[j].first;
        }
      }
      auto has = [&](const std::string& wanted) {
        return std::any_of(texts.begin(), texts.end(),
                           [&](const auto& text) { return text.first == wanted; });
      };
      for (const char* title : SurfaceTitle(table, view))
        EXPECT_TRUE(!*title || has(title)) << title;
      for (const char* text : {"Engine Speed", "(RPM)", "MAP (kPa)", "104", "10", "6800"})
        EXPECT_TRUE(has(text)) << text;
    }
}
