// Registration of the monitors.
#include "monitors/monitors.h"

#include "monitors/monitor1.h"
#include "monitors/monitor3.h"

void RegisterMonitors() {
  RegisterMonitor1();
  RegisterMonitor3();
}
