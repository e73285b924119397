// Keys and mouse buttons on their way to the toolkit.
#pragma once

void ListenToKeys();
