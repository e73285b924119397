// The screens that say what the program is.
#pragma once

#include "platform/screen.h"

extern Screen frmAbout;
extern Screen frmSplash;
