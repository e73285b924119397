// The volumetric efficiency table with its three views.
#pragma once

#include "editors/editcycle.h"

// Added to what the cells show: 0 in OFFSET mode, 100 in ABSOLUTE mode. Starts as 0 whenever the
// screen is loaded.
extern int GamaOffset;

// The screen frmVETable.
Editor& FrmVETable();
