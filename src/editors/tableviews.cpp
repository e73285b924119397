// The working views of the four tables.
#include "editors/tableviews.h"

int SelectedTable = TableVe;
int VeView = 0;
WorkGrid TableWork{};
ColourGrid TableColours{};

namespace {

constexpr int LastRow = 10;     // margin above the highest load
constexpr int LastColumn = 12;  // margin at the rev limit
constexpr float StoichiometricRatio = 14.64f;

// Pulse, duty and colour of the VE table's nodes. The top margin stands for the highest pressure
// that the engine reaches, not for the end of the sensor's range.
void BuildVeViews() {
  for (int row = FirstTableRow; row <= LastRow; ++row) {
    double loadKpa = row == LastRow ? MaxManifoldKpa : LoadAxis[row];
    for (int column = 1; column <= LastColumn; ++column) {
      double ve = VeWork[row][column];
      double pulseMs = CorrectedPulseMs(ve, loadKpa);
      double rpm = column > 1 ? RpmAxis[column] : 0;
      double shown = VeView == 0 ? ve : VeView == 1 ? pulseMs : DutyPercent(pulseMs, rpm);
      TableWork[row][column] = static_cast<float>(shown);
      TableColours[row][column] = ColourOfLoadDuty(LoadDutyPercent(pulseMs, rpm));
    }
  }
  TableColours[LastRow] = TableColours[LastRow - 1];
  TableColours[1] = TableColours[FirstTableRow];
}

struct FixedView {
  const WorkGrid& source;
  Colour colour;
};

void BuildFixedView(const FixedView& view) {
  for (int row = FirstTableRow; row < FirstTableRow + TableSide; ++row)
    for (int column = FirstTableColumn; column < FirstTableColumn + TableSide; ++column)
      TableWork[row][column] = view.source[row][column];
  for (auto& row : TableColours) row.fill(view.colour);
}

float LowSpeedMargin() {
  if (SelectedTable == TableAirFuel) return StoichiometricRatio;
  if (SelectedTable == TableAdvance) return CalValues[3];
  return 0;
}

void BuildMargins() {
  float low = LowSpeedMargin();
  for (int row = FirstTableRow; row <= LastRow; ++row) {
    for (int column = 1; column < FirstTableColumn; ++column) TableWork[row][column] = low;
    TableWork[row][LastColumn] = TableWork[row][LastColumn - 1];
  }
  TableWork[1] = TableWork[FirstTableRow];
  TableWork[LastRow] = TableWork[LastRow - 1];
}

}  // namespace

double CorrectedPulseMs(double vePercent, double loadKpa) {
  double low = MapLow, high = MapHigh;
  return WorkIot + (1 + vePercent / 100) * WorkTog * (loadKpa - low) / (high - low);
}

// Without engine speed there is no end to the time between two events, and so no duty.
double DutyPercent(double pulseMs, double rpm) {
  if (rpm == 0) return 0;
  return 100 * pulseMs / (60000 / rpm);
}

double LoadDutyPercent(double pulseMs, double rpm) {
  if (rpm == 0) return 0;
  return 100 * pulseMs / (60000 / rpm - InjectorRecoveryMs);
}

Colour ColourOfLoadDuty(double loadDutyPercent) {
  if (loadDutyPercent >= DutyAtLimit) return Red;
  if (loadDutyPercent >= DutyNearLimit) return Yellow;
  return White;
}

void ExtendAxes() {
  for (int position = 1; position < FirstTableColumn; ++position) RpmAxis[position] = 0;
  RpmAxis[LastColumn] = WorkRevLimit;
  LoadAxis[1] = MapLow;
  LoadAxis[LastRow] = MapHigh;
}

void BuildTableViews() {
  ExtendAxes();
  switch (SelectedTable) {
    case TableGpo:
      BuildFixedView({GpoWork, White});
      break;
    case TableAdvance:
      BuildFixedView({AdvanceWork, Yellow});
      break;
    case TableAirFuel:
      BuildFixedView({AfrWork, Blue});
      break;
    default:
      BuildVeViews();
  }
  BuildMargins();
}

void ResetTableViews() {
  SelectedTable = TableVe;
  VeView = 0;
  for (auto& row : TableWork) row.fill(0);
  for (auto& row : TableColours) row.fill(White);
}
