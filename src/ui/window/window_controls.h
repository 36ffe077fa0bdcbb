#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

/// What the window's controls say and which of them are enabled, as it follows from the
/// controller's state. A plain value; made on the main thread.
namespace reelcrate {

class Controller;

class WindowControls {
    Q_GADGET
    QML_VALUE_TYPE(windowControls)

    Q_PROPERTY(bool addingAllowed MEMBER addingAllowed CONSTANT)
    Q_PROPERTY(QString addTitle MEMBER addTitle CONSTANT)
    Q_PROPERTY(bool canClearQueue MEMBER canClearQueue CONSTANT)
    Q_PROPERTY(bool canDownloadAll MEMBER canDownloadAll CONSTANT)
    Q_PROPERTY(bool canStopAll MEMBER canStopAll CONSTANT)
    Q_PROPERTY(bool canDelete MEMBER canDelete CONSTANT)
    Q_PROPERTY(bool isQueueEmpty MEMBER isQueueEmpty CONSTANT)
    Q_PROPERTY(QString songCount MEMBER songCount CONSTANT)
    Q_PROPERTY(QString activeCount MEMBER activeCount CONSTANT)
    Q_PROPERTY(QString selectedCount MEMBER selectedCount CONSTANT)
    Q_PROPERTY(bool isSettingUp MEMBER isSettingUp CONSTANT)
    Q_PROPERTY(QColor setupColor MEMBER setupColor CONSTANT)
    Q_PROPERTY(QString setupDetail MEMBER setupDetail CONSTANT)
    Q_PROPERTY(QString setupTitle MEMBER setupTitle CONSTANT)
    Q_PROPERTY(QString updateTitle MEMBER updateTitle CONSTANT)
    Q_PROPERTY(QString updateMessage MEMBER updateMessage CONSTANT)

public:
    static WindowControls of(const Controller& controller);

    bool addingAllowed = false;
    QString addTitle;
    bool canClearQueue = false;
    bool canDownloadAll = false;
    bool canStopAll = false;
    bool canDelete = false;
    bool isQueueEmpty = true;
    QString songCount;
    QString activeCount;
    QString selectedCount;  ///< empty when nothing is selected
    bool isSettingUp = false;
    QColor setupColor;
    QString setupDetail;
    QString setupTitle;
    QString updateTitle;
    QString updateMessage;

    friend bool operator==(const WindowControls&, const WindowControls&) = default;
};

/// The colour of the setup label: ready, at work, or something is missing.
QColor setupStatusColor(const Controller& controller);

}  // namespace reelcrate
