// The peer of the silent wait: the toolkit's bare event loop.
#pragma once

// Sleeps in the event loop for so long, woken once a millisecond; the application must exist.
void RunPlainLoop(int milliseconds);
