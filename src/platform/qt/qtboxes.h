// Boxes that are open.
#pragma once

// Leaves every open box by its close box (the program ends).
void CloseOpenBoxes();
