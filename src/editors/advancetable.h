// The main spark advance table, on which the axes of all four tables are edited too.
#pragma once

#include "editors/editcycle.h"

// The screen Ign_adv_tbl.
Editor& IgnAdvTbl();
