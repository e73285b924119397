// Registration of the monitors.
#include "monitors/monitors.h"

#include "monitors/monitor3.h"

void RegisterMonitors() { RegisterMonitor3(); }
