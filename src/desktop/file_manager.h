#pragma once

#include <QDBusConnection>
#include <QDesktopServices>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

/// Shows the user's files and folders in the desktop's file manager. Main thread; nothing waits for
/// the file manager. Where it cannot point at a file, the folder opens instead; where that does not
/// open either, nothing happens.
namespace reelcrate {

class FileManager : public QObject {
    Q_OBJECT

public:
    /// `openUrl` opens a folder in whatever program the user has for it.
    explicit FileManager(QDBusConnection bus = QDBusConnection::sessionBus(),
                         std::function<bool(const QUrl&)> openUrl = QDesktopServices::openUrl,
                         QObject* parent = nullptr);

    /// Opens the folder that holds the file, with the file selected.
    void showFile(const QString& path);
    void openFolder(const QString& path);

private:
    QDBusConnection m_bus;
    std::function<bool(const QUrl&)> m_openUrl;
};

}  // namespace reelcrate
