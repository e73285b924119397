// The table of desired air/fuel ratios.
#pragma once

#include "editors/editcycle.h"

// The screen EGO_AF_TBL.
Editor& EgoAfTbl();
