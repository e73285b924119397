// What stands in the way of a command of the main menu.
#pragma once

// Something is live: says so and returns true.
bool RefusedWhileLive();
