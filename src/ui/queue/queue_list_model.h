#pragma once

#include "queue/queue_store.h"
#include "ui/queue/row_presentation.h"

#include <QAbstractListModel>
#include <QColor>
#include <QList>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

/// The queue's rows as the window shows them: one role for everything that a row's card needs, so
/// that the card decides nothing. Says precisely what changed; a change of one row touches that
/// row. Main thread. The controller outlives the model.
namespace reelcrate {

class Controller;

class QueueListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

public:
    enum Role {
        ItemID = Qt::UserRole,
        Title,
        Duration,
        SourceLabel,
        SourceSymbol,
        SourceTint,
        Thumbnail,
        StatusLabel,
        StatusLabelColor,
        StatusIcon,
        Headline,
        HeadlineColor,
        Subtitle,
        StatusFrom,
        StatusTo,
        StatusShadow,
        StatusStroke,
        AccentColor,
        IsRaised,
        IsRunning,
        Progress,
        ProgressText,
        IsSelected,
        ActionIsBusy,
        ActionSymbol,
        ActionHelp,
        ActionEnabled,
        AccessibleName,
        AccessibleDescription,
        WholeTitle,
        WholeSubtitle,
    };
    Q_ENUM(Role)

    explicit QueueListModel(Controller& controller, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    bool isActionEnabled(RowAction action) const;
    const QUuid& idAt(int index) const { return m_ids.at(index); }

    /// Where the first of these rows is that there still is; -1 when there is none.
    Q_INVOKABLE int firstOf(const QStringList& itemIDs) const;

private:
    QVariant statusData(const DownloadItem& item, int role) const;
    QVariant actionData(const DownloadItem& item, int role) const;
    void insert(qsizetype first, qsizetype count);
    void replace(qsizetype index, qsizetype count);
    void remove(const QList<qsizetype>& formerIndexes);
    void changed(qsizetype index, QueueStore::Fields fields);
    void allChanged(const QList<int>& roles);
    void updateDownloadsEnabled();
    bool isSelected(const DownloadItem& item) const;

    Controller& m_controller;
    const QueueStore& m_queue;
    QList<QUuid> m_ids;  ///< of the rows that the views have been told of
    bool m_downloadsEnabled = false;
};

}  // namespace reelcrate
