#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// The tests' own screen: none that anybody sees, without a graphics card, and just so large that
/// the window takes its preferred size.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir folder;
    QFile screen(folder.filePath(QStringLiteral("screen.json")));
    if (!screen.open(QIODevice::WriteOnly))
        return EXIT_FAILURE;
    screen.write(R"({"screens": [{"name": "tests", "x": 0, "y": 0, "width": 1480, "height": 1070,
                                  "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    screen.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screen.fileName()));
    qputenv("QT_QUICK_BACKEND", "software");
    // No desktop either.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
