#include "ui/queue/queue_list_model.h"

#include "app/controller.h"
#include "records/progress_text.h"
#include "theme/tech_theme.h"
#include "ui/queue/thumbnail_provider.h"

#include <QMetaEnum>

#include <array>
#include <utility>

namespace reelcrate {

namespace {

using Model = QueueListModel;

/// Rows that go in more pieces than this are told of as a whole: views take each piece singly.
constexpr int mostPieces = 64;

const QList<int> actionRoles{Model::ActionIsBusy, Model::ActionSymbol, Model::ActionHelp,
                             Model::ActionEnabled};
const QList<int> selectionRoles{Model::IsSelected, Model::AccentColor};
const QList<int> stateRoles =
    QList<int>{Model::StatusLabel,  Model::StatusLabelColor, Model::StatusIcon,
               Model::Headline,     Model::HeadlineColor,    Model::Subtitle,
               Model::StatusFrom,   Model::StatusTo,         Model::StatusShadow,
               Model::StatusStroke, Model::AccentColor,      Model::IsRaised,
               Model::IsRunning,    Model::AccessibleName,   Model::AccessibleDescription,
               Model::WholeSubtitle} +
    actionRoles;

/// What of a row's look follows from a field of its record.
const std::array<std::pair<QueueStore::Field, QList<int>>, 10> rolesOfFields{{
    {QueueStore::Url, {Model::Title, Model::WholeTitle, Model::Subtitle, Model::AccessibleName}},
    {QueueStore::Source,
     {Model::SourceLabel, Model::SourceSymbol, Model::SourceTint, Model::Subtitle,
      Model::AccessibleName}},
    {QueueStore::Status, stateRoles},
    {QueueStore::Detail, QList<int>{Model::Headline, Model::Subtitle, Model::WholeSubtitle,
                                    Model::AccessibleName, Model::AccessibleDescription} +
                             actionRoles},
    {QueueStore::Note,
     {Model::Subtitle, Model::WholeSubtitle, Model::AccessibleName, Model::AccessibleDescription}},
    {QueueStore::Title, QList<int>{Model::Title, Model::WholeTitle, Model::AccessibleName,
                                   Model::AccessibleDescription} +
                            actionRoles},
    {QueueStore::Duration, {Model::Duration}},
    {QueueStore::ThumbnailURL, {Model::Thumbnail}},
    {QueueStore::IsResolvingInfo, stateRoles},
    {QueueStore::Progress, {Model::Progress, Model::ProgressText, Model::AccessibleName}},
}};

QColor color(const Tint& tint) {
    return rgb(tint.red, tint.green, tint.blue, tint.opacity);
}

RowAction actionOf(const DownloadItem& item) {
    return queueRowAction(item, ResolutionDriver::shouldRetryInfoForFailedItem(item));
}

}  // namespace

QueueListModel::QueueListModel(Controller& controller, QObject* parent)
    : QAbstractListModel(parent), m_controller(controller), m_queue(controller.queue()) {
    insert(0, m_queue.size());
    connect(&m_queue, &QueueStore::rowsInserted, this, &QueueListModel::insert);
    connect(&m_queue, &QueueStore::rowReplaced, this, &QueueListModel::replace);
    connect(&m_queue, &QueueStore::rowsRemoved, this, &QueueListModel::remove);
    connect(&m_queue, &QueueStore::rowChanged, this, &QueueListModel::changed);
    connect(&controller.editor(), &QueueEditor::selectionChanged, this,
            [this] { allChanged(selectionRoles); });
    connect(&controller, &Controller::toolsChanged, this, &QueueListModel::updateDownloadsEnabled);
    updateDownloadsEnabled();
}

int QueueListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

QHash<int, QByteArray> QueueListModel::roleNames() const {
    // The names of the roles with a small first letter.
    QHash<int, QByteArray> names;
    const auto roles = QMetaEnum::fromType<Role>();
    for (int i = 0; i < roles.keyCount(); ++i) {
        QByteArray name = roles.key(i);
        name[0] = static_cast<char>(name.at(0) - 'A' + 'a');
        names.insert(roles.value(i), name);
    }
    return names;
}

bool QueueListModel::isSelected(const DownloadItem& item) const {
    return m_controller.editor().selection().ids.contains(item.id);
}

QVariant QueueListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DownloadItem* row = m_queue.find(m_ids.at(index.row()));
    static const DownloadItem gone{};
    const DownloadItem& item = row ? *row : gone;
    switch (role) {
        case ItemID:
            return idText(item.id);
        case Title:
            return queueRowTitle(item);
        case Duration:
            return item.duration;
        case SourceLabel:
            return rawValue(item.source);
        case SourceSymbol:
            return symbol(item.source);
        case SourceTint:
            return color(tint(item.source));
        case Thumbnail:
            return ThumbnailProvider::source(item.thumbnailURL);
        case Progress:
            return progressBarValue(item.progress);
        case ProgressText:
            return progressPercentage(item.progress);
        case IsSelected:
            return isSelected(item);
        case AccessibleName:
            return rowAccessibleName(item);
        case AccessibleDescription:
            return rowAccessibleDescription(item);
        case WholeTitle:
            return queueRowWholeTitle(item);
        case WholeSubtitle:
            return shortened(queueRowError(item) + queueRowNoteHelp(item), longestReadText);
        default:
            break;
    }
    return role < ActionIsBusy ? statusData(item, role) : actionData(item, role);
}

QVariant QueueListModel::statusData(const DownloadItem& item, int role) const {
    switch (role) {
        case StatusLabel:
            return queueStatusLabel(item);
        case StatusLabelColor:
            return queueStatusLabelColor(item);
        case StatusIcon:
            return queueStatusIcon(item);
        case Headline:
            return queueStatusHeadline(item);
        case HeadlineColor:
            return queueDetailColor(item);
        case Subtitle:
            return queueStatusSubtitle(item).value_or(QString());
        case StatusFrom:
            return queueStatusBackground(item.status).from;
        case StatusTo:
            return queueStatusBackground(item.status).to;
        case StatusShadow:
            return queueStatusShadowColor(item.status);
        case StatusStroke:
            return queueStatusStrokeColor(item.status);
        case AccentColor:
            return queueAccentColor(item, isSelected(item));
        case IsRaised:
            return rowIsRaised(item);
        case IsRunning:
            return item.status == QueueStatus::running;
        default:
            return {};
    }
}

QVariant QueueListModel::actionData(const DownloadItem& item, int role) const {
    const RowAction action = actionOf(item);
    switch (role) {
        case ActionIsBusy:
            return action == RowAction::busy;
        case ActionSymbol:
            return rowActionSymbol(action);
        case ActionHelp:
            return rowActionHelp(action);
        case ActionEnabled:
            return isActionEnabled(action);
        default:
            return {};
    }
}

void QueueListModel::insert(qsizetype first, qsizetype count) {
    if (count == 0)
        return;
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(first + count - 1));
    m_ids.insert(first, count, QUuid());
    for (qsizetype index = first; index < first + count; ++index)
        m_ids[index] = m_queue.rows().at(index).id;
    endInsertRows();
}

void QueueListModel::replace(qsizetype index, qsizetype count) {
    if (count == 0) {
        remove({index});
        return;
    }
    m_ids[index] = m_queue.rows().at(index).id;
    const QModelIndex place = this->index(static_cast<int>(index));
    Q_EMIT dataChanged(place, place);
    insert(index + 1, count - 1);
}

void QueueListModel::remove(const QList<qsizetype>& formerIndexes) {
    // Neighbours go together; from the end, so that the indexes before stay right.
    QList<std::pair<int, int>> pieces;
    for (const qsizetype former : formerIndexes) {
        const int index = static_cast<int>(former);
        if (pieces.isEmpty() || pieces.last().second + 1 != index)
            pieces.append({index, index});
        else
            pieces.last().second = index;
    }
    if (pieces.size() > mostPieces) {
        beginResetModel();
        m_ids.clear();
        for (const DownloadItem& row : m_queue.rows())
            m_ids.append(row.id);
        endResetModel();
        return;
    }
    for (auto piece = pieces.crbegin(); piece != pieces.crend(); ++piece) {
        beginRemoveRows({}, piece->first, piece->second);
        m_ids.remove(piece->first, piece->second - piece->first + 1);
        endRemoveRows();
    }
}

void QueueListModel::changed(qsizetype index, QueueStore::Fields fields) {
    QList<int> roles;
    for (const auto& [field, affected] : rolesOfFields) {
        if (fields & field)
            roles += affected;
    }
    if (!roles.isEmpty()) {
        const QModelIndex place = this->index(static_cast<int>(index));
        Q_EMIT dataChanged(place, place, roles);
    }
    if (fields & QueueStore::Status)
        updateDownloadsEnabled();
}

void QueueListModel::allChanged(const QList<int>& roles) {
    if (!m_ids.isEmpty())
        Q_EMIT dataChanged(index(0), index(static_cast<int>(m_ids.size()) - 1), roles);
}

bool QueueListModel::isActionEnabled(RowAction action) const {
    return rowActionEnabled(action, m_controller.canDownload());
}

int QueueListModel::firstOf(const QStringList& itemIDs) const {
    for (const QString& itemID : itemIDs) {
        const qsizetype index = m_queue.indexOf(QUuid(itemID));
        if (index >= 0)
            return static_cast<int>(index);
    }
    return -1;
}

void QueueListModel::updateDownloadsEnabled() {
    const bool enabled = isActionEnabled(RowAction::download);
    if (enabled == m_downloadsEnabled)
        return;
    m_downloadsEnabled = enabled;
    allChanged({ActionEnabled});
}

}  // namespace reelcrate
