// Which window of the program has the keys of the desktop.
#pragma once

#include <QWidget>

// The window is to have the keys. The next turn asks for it, in place of what was wished before.
void WishActivation(QWidget& window);
// What was wished stands no more: a press of the mouse has decided, or a box comes up.
void ForgetActivationWish();
// A turn: asks the desktop for what is wished.
void AskForKeys();
// The window comes up, and may get the keys for that alone.
void NoteComingUp(QWidget& window);
// A window of ours got the keys: false when another one is to have them, which is then asked for
// again.
bool ActivationCounts(const QWidget& window);
