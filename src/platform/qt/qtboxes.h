// Boxes that are open.
#pragma once

// Leaves every open box by its close box (the program ends).
void CloseOpenBoxes();
// Forgets the folder of the last choice.
void ResetBoxes();
