#include <QGuiApplication>

#include <gtest/gtest.h>

/// The tests' own screen: none that anybody sees, and no graphics card.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    // No desktop either.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
