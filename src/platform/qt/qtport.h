// Ports as the event queue sees them.
#pragma once

// Tells the bytes that have come to open ports. Result: whether there were any.
bool TellPortBytes();
