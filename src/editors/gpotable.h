// The duty table of the general purpose output, and its frequency.
#pragma once

#include "editors/editcycle.h"

// The screen GPO_Ctl.
Editor& GpoCtl();
