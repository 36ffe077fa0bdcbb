#include "desktop/file_manager.h"

#include "desktop/service_call.h"

#include <QFileInfo>
#include <QProcess>
#include <QStringList>

#include <utility>

namespace reelcrate {

namespace {

// A user who clicked does not wait longer for a file manager that has to be started first.
[[maybe_unused]] constexpr std::chrono::milliseconds patience{5'000};

[[maybe_unused]] QDBusMessage showItemsCall(const QString& path) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QStringList uris{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())};
    const QString startupId = QStringLiteral("");  // none, but on the bus a text cannot be null
    call << uris << startupId;
    return call;
}

}  // namespace

FileManager::FileManager(QDBusConnection bus, std::function<bool(const QUrl&)> openUrl,
                         QObject* parent)
    : QObject(parent), m_bus(std::move(bus)), m_openUrl(std::move(openUrl)) {}

void FileManager::showFile(const QString& path) {
    const QString folder = QFileInfo(path).path();
#ifdef Q_OS_MACOS
    if (!QProcess::startDetached(QStringLiteral("open"), {QStringLiteral("-R"), path}))
        openFolder(folder);
#else
    const auto answered = [this, folder](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ErrorMessage)
            openFolder(folder);
    };
    callService(m_bus, showItemsCall(path), this, answered, patience);
#endif
}

void FileManager::openFolder(const QString& path) {
    m_openUrl(QUrl::fromLocalFile(path));
}

}  // namespace reelcrate
