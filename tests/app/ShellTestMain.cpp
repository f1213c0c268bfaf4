#include <QApplication>
#include <gtest/gtest.h>

// The shell's objects are widgets and deliver through the event loop, so
// every test runs inside one application object (offscreen).
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
