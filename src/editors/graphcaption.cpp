// What a table screen tells the 3D graph.
#include "editors/graphcaption.h"

GraphHandOver Graph3DCaption;
