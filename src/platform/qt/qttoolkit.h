// The toolkit's start.
#pragma once

#include <QApplication>
#include <memory>

// Where no display can be used, tells so in words that help and ends the process with exit code 1.
std::unique_ptr<QApplication> StartToolkit(int& argc, char** argv);
