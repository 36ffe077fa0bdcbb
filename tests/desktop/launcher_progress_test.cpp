#include "desktop/launcher_progress.h"

#include "private_bus.h"
#include "support/printers.h"

#include <QDBusArgument>
#include <QVariantMap>

#include <cmath>

namespace reelcrate {
namespace {

class Dock : public QObject {
    Q_OBJECT

public:
    struct Shown {
        double progress;
        bool isVisible;
        friend bool operator==(const Shown&, const Shown&) = default;
    };
    std::vector<Shown> shown;

private Q_SLOTS:
    void update(const QDBusMessage& signal) {
        EXPECT_EQ(signal.signature(), QStringLiteral("sa{sv}"));
        EXPECT_EQ(signal.arguments().value(0), QStringLiteral("application://reelcrate.desktop"));
        const auto given = qdbus_cast<QVariantMap>(signal.arguments().value(1));
        shown.push_back({given.value(QStringLiteral("progress"), -1).toDouble(),
                         given.value(QStringLiteral("progress-visible")).toBool()});
    }
};

using LauncherProgressTest = BusTest;

TEST_F(LauncherProgressTest, SaysWholePercentsOnce) {
    Dock dock;
    EXPECT_TRUE(desktop.connect(QString(), QString(),
                                QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                QStringLiteral("Update"), &dock, SLOT(update(QDBusMessage))));
    settle();
    LauncherProgress(absentBus()).setProgress(0.5);  // silence
    LauncherProgress progress(client);
    const std::optional<double> fractions[] = {
        std::nullopt, 0.0, 0.001, 0.25,         0.252,        0.3,          0.25,
        1.0,          2.0, -1.0,  std::nan(""), std::nullopt, std::nullopt, 0.5};
    for (const auto& fraction : fractions)
        progress.setProgress(fraction);
    const std::vector<Dock::Shown> expected{{0.0, true}, {0.25, true}, {0.3, true},  {0.25, true},
                                            {1.0, true}, {0.0, true},  {0.0, false}, {0.5, true}};
    EXPECT_TRUE(waitUntil([&] { return dock.shown.size() >= expected.size(); }));
    EXPECT_EQ(dock.shown, expected);
}

}  // namespace
}  // namespace reelcrate

#include "launcher_progress_test.moc"
