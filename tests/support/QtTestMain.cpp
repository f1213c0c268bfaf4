// The code under test delivers through the event loop, so every test runs
// inside one application object: a widget one where the test links widgets.
#ifdef QT_WIDGETS_LIB
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    TestApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
