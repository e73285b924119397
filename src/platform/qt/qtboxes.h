// Boxes that are open.
#pragma once

class QDialog;
class QWidget;

// Runs the queue until the box is closed; its result. Afterwards the keys are where the record
// says.
int RunBox(QDialog& box);
// Whether this window is a box that RunBox has open.
bool IsOpenBox(const QWidget& window);
// Leaves every open box by its close box (the program ends).
void CloseOpenBoxes();
// Forgets the folder of the last choice.
void ResetBoxes();
