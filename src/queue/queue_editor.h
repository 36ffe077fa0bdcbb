#pragma once

#include "queue/queue_selection.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

/// Selects and deletes rows on the user's gestures, by pointer and keyboard. Main thread. What a
/// gesture cannot do is silently not done; operations that a key can mean say whether they acted.
namespace reelcrate {

class QueueStore;

/// Whether a text is being edited, to which its keys belong. A window implements it.
class TextEditing {
public:
    virtual ~TextEditing() = default;
    virtual bool isEditing() const = 0;
    /// The control that edits a text lets go of the keyboard; nothing happens when none does.
    virtual void endEditing() = 0;

protected:
    TextEditing() = default;
    Q_DISABLE_COPY_MOVE(TextEditing)
};

/// A key that was pressed, free of any toolkit.
struct KeyEvent {
    enum Code : quint16 {
        a = 0,
        backspace = 51,
        period = 47,
        escape = 53,
        forwardDelete = 117,
        downArrow = 125,
        upArrow = 126,
    };

    std::optional<quint16> code;  ///< absent for a key without one: zero is a letter's
    KeyModifiers modifiers;
};

class QueueEditor : public QObject {
    Q_OBJECT

public:
    /// `isDownloading` tells whether a run is in progress, during which nothing is deleted.
    /// `textEditing` may be absent; it outlives the editor. `stopRows` stops what goes on with
    /// rows, and says whether anything did.
    QueueEditor(QueueStore& queue, std::function<bool()> isDownloading, TextEditing* textEditing,
                std::function<bool(const QSet<QUuid>&)> stopRows = {});

    const QueueSelection& selection() const { return m_selection; }

    void updateQueueSelection(const QUuid& id, KeyModifiers modifiers);
    bool moveQueueSelection(int direction, bool extending);
    bool selectAllQueueItemsFromUserAction();
    bool clearQueueSelectionFromUserAction();
    bool deleteQueueItems(const QSet<QUuid>& ids);
    bool deleteSelectedQueueItemsFromUserAction();

    /// Removes all rows, also during a run.
    void clearQueue();

    /// A click in the queue beside its rows.
    void clickQueueArea();

    /// Whether the key was meant for the queue and is done with.
    bool handleKeyDown(const KeyEvent& event);

Q_SIGNALS:
    void selectionChanged();
    void summaryChanged(const QString& text);

private:
    bool isEditingText() const;
    void endTextEditing();
    void setSelection(const QueueSelection& selection);

    QueueStore& m_queue;
    std::function<bool()> m_isDownloading;
    TextEditing* m_textEditing;
    std::function<bool(const QSet<QUuid>&)> m_stopRows;
    QueueSelection m_selection;
};

}  // namespace reelcrate
