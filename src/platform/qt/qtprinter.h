// Printing without asking for a printer (the test user).
#pragma once

#include <QString>

// Documents go to this PDF file; empty asks the user again.
void PrintToFile(const QString& path);
