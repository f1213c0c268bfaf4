#include <QCoreApplication>
#include <gtest/gtest.h>

// The monitor delivers its results through the event loop, so every test
// runs inside one application object.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
