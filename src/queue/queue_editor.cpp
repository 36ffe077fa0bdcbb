#include "queue/queue_editor.h"

#include "base/text.h"
#include "queue/queue_store.h"

#include <utility>

namespace reelcrate {

QueueEditor::QueueEditor(QueueStore& queue, std::function<bool()> isDownloading,
                         TextEditing* textEditing, std::function<bool(const QSet<QUuid>&)> stopRows)
    : m_queue(queue),
      m_isDownloading(std::move(isDownloading)),
      m_textEditing(textEditing),
      m_stopRows(std::move(stopRows)) {}

bool QueueEditor::isEditingText() const {
    return m_textEditing != nullptr && m_textEditing->isEditing();
}

void QueueEditor::endTextEditing() {
    if (isEditingText())
        m_textEditing->endEditing();
}

void QueueEditor::setSelection(const QueueSelection& selection) {
    if (selection == m_selection)
        return;
    m_selection = selection;
    Q_EMIT selectionChanged();
}

void QueueEditor::updateQueueSelection(const QUuid& id, KeyModifiers modifiers) {
    if (m_queue.find(id) == nullptr)
        return;
    endTextEditing();
    setSelection(m_selection.clicked(id, modifiers, m_queue));
}

bool QueueEditor::moveQueueSelection(int direction, bool extending) {
    if (m_queue.size() == 0)
        return false;
    endTextEditing();
    setSelection(m_selection.moved(direction, extending, m_queue));
    return true;
}

bool QueueEditor::selectAllQueueItemsFromUserAction() {
    if (m_queue.size() == 0)
        return false;
    endTextEditing();
    setSelection(m_selection.allSelected(m_queue));
    Q_EMIT summaryChanged(QStringLiteral("Selected %1 song").arg(m_queue.size()) +
                          pluralSuffix(m_queue.size()));
    return true;
}

bool QueueEditor::clearQueueSelectionFromUserAction() {
    if (m_selection.ids.isEmpty())
        return false;
    setSelection(m_selection.cleared());
    Q_EMIT summaryChanged(QStringLiteral("Selection cleared"));
    return true;
}

bool QueueEditor::deleteSelectedQueueItemsFromUserAction() {
    if (m_isDownloading() || isEditingText())
        return false;
    return deleteQueueItems(m_selection.ids);
}

bool QueueEditor::deleteQueueItems(const QSet<QUuid>& ids) {
    if (m_isDownloading())
        return false;
    const QSet<QUuid> removable = m_queue.idsAmong(ids);
    if (removable.isEmpty())
        return false;
    m_queue.remove(removable);
    setSelection(m_selection.withoutRows(removable, m_queue));
    const qsizetype removed = removable.size();
    if (m_queue.size() == 0)
        Q_EMIT summaryChanged(QStringLiteral("Ready"));
    else if (removed == 1)
        Q_EMIT summaryChanged(QStringLiteral("Removed selected song"));
    else
        Q_EMIT summaryChanged(QStringLiteral("Removed %1 selected songs").arg(removed));
    return true;
}

void QueueEditor::clearQueue() {
    m_queue.clear();
    setSelection({});
    Q_EMIT summaryChanged(QStringLiteral("Ready"));
}

void QueueEditor::clickQueueArea() {
    endTextEditing();
    QueueSelection selection = m_selection;
    selection.keyboardScopeActive = true;
    setSelection(selection);
}

bool QueueEditor::handleKeyDown(const KeyEvent& event) {
    if (isEditingText() || !event.code)
        return false;
    if (event.code == KeyEvent::backspace || event.code == KeyEvent::forwardDelete)
        return deleteSelectedQueueItemsFromUserAction();
    if (!m_selection.keyboardScopeActive && m_selection.visible(m_queue).isEmpty())
        return false;
    switch (*event.code) {
        case KeyEvent::a:
            return event.modifiers.testFlag(KeyModifier::command) &&
                   selectAllQueueItemsFromUserAction();
        case KeyEvent::period:
            return event.modifiers.testFlag(KeyModifier::command) && m_stopRows &&
                   m_stopRows(m_selection.ids);
        case KeyEvent::escape:
            return clearQueueSelectionFromUserAction();
        case KeyEvent::downArrow:
        case KeyEvent::upArrow:
            return moveQueueSelection(event.code == KeyEvent::downArrow ? 1 : -1,
                                      event.modifiers.testFlag(KeyModifier::shift));
        default:
            return false;
    }
}

}  // namespace reelcrate
