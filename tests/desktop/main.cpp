// Tests of the window draw into memory: no display is needed. They keep their settings to
// themselves.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdlib>

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir settings;
  qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
