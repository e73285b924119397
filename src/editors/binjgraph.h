// Basic injectors: the parameters of the fundamental fuel curve, what the injectors can deliver,
// and both as a graph.
#pragma once

#include "editors/editcycle.h"

// The screen Binj_graph.
Editor& BinjGraph();
// Its redraw routine.
void RedrawFF();
