#include "editors/graphcaption.h"

GraphHandOver Graph3DCaption;
