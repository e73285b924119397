// Tests on Qt: one application without a display, settings of its own.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/loop.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
  qputenv("XDG_RUNTIME_DIR", settings.path().toLocal8Bit());
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  StartPlatform(argc, argv);
  return RUN_ALL_TESTS();
}
