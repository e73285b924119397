// The drawing of the 3D graph on its canvas: what the screen's routines share.
#pragma once

#include <string>
#include <vector>

#include "editors/surface.h"

// Values of the ticks of the value axis, both ends included.
std::vector<double> ValueTicks(const ValueAxis& axis);
