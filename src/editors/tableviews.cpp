// The working views of the four tables.
#include "editors/tableviews.h"

#include "core/encoder.h"

int SelectedTable = TableVe;
int VeView = 0;
WorkGrid TableWork{};
ColourGrid TableColours{};

namespace {

constexpr int FirstRpmValue = 45;   // in CalValues, eight breakpoints
constexpr int FirstLoadValue = 53;  // for a sensor of 1 bar

constexpr int LastRow = 10;     // margin above the highest load
constexpr int LastColumn = 12;  // margin at the rev limit

// Pulse, duty and colour of the VE table's nodes.
void BuildVeViews() {
  for (int row = FirstTableRow; row <= LastRow; ++row) {
    for (int column = 1; column <= LastColumn; ++column) {
      double ve = VeWork[row][column];
      double pulseMs = NodePulseMs(row, column);
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
  if (SelectedTable == TableAirFuel) return static_cast<float>(StoichiometricRatio);
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

// A sensor without a range measures no load; what is left then is the injector's offset.
double CorrectedPulseMs(double vePercent, double loadKpa) {
  double low = MapLow, span = static_cast<double>(MapHigh) - MapLow;
  if (span == 0) return WorkIot;
  return WorkIot + (1 + vePercent / 100) * WorkTog * (loadKpa - low) / span;
}

double NodePulseMs(int row, int column) {
  double loadKpa = row == LastRow ? MaxManifoldKpa : LoadAxis[row];
  return CorrectedPulseMs(VeWork[row][column], loadKpa);
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
  for (int i = 0; i < TableSide; ++i) {
    RpmAxis[FirstTableColumn + i] = CalValues[FirstRpmValue + i];
    LoadAxis[FirstTableRow + i] = static_cast<float>(CalValues[FirstLoadValue + i] * LoadScale());
  }
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
