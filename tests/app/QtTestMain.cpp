#include <gtest/gtest.h>

#include <QCoreApplication>

// View models post their results to the application object, so one must exist.
int main(int argc, char* argv[]) {
  QCoreApplication application(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
