#pragma once

#include <QFlags>
#include <QList>
#include <QSet>
#include <QUuid>

#include <optional>

/// Which rows of the queue are selected. A value; its operations take the queue's rows as they are
/// and give the selection that follows. Main thread, for the queue's sake. What names no row is
/// passed over, never an error.
namespace reelcrate {

class QueueStore;

/// The keyboard modifiers that count, as the bits that the key event records carry.
enum class KeyModifier : quint32 {
    shift = 1U << 17,
    command = 1U << 20,
};
Q_DECLARE_FLAGS(KeyModifiers, KeyModifier)
Q_DECLARE_OPERATORS_FOR_FLAGS(KeyModifiers)

struct QueueSelection {
    QSet<QUuid> ids;                   ///< may name rows that are gone; take visible() of it
    std::optional<QUuid> anchor;       ///< the fixed end of a range
    std::optional<QUuid> focus;        ///< the moving end, where the keyboard is
    bool keyboardScopeActive = false;  ///< the queue's keys apply even with nothing selected

    /// After a click on the row `id`, which the queue has.
    QueueSelection clicked(const QUuid& id, KeyModifiers modifiers, const QueueStore& queue) const;

    /// One step down (+1) or up (-1) in a queue that is not empty.
    QueueSelection moved(int direction, bool extending, const QueueStore& queue) const;

    /// All rows of a queue that is not empty.
    QueueSelection allSelected(const QueueStore& queue) const;

    QueueSelection cleared() const;

    /// After these rows were removed from what is now the queue.
    QueueSelection withoutRows(const QSet<QUuid>& removed, const QueueStore& queue) const;

    /// The selected rows that the queue has.
    QSet<QUuid> visible(const QueueStore& queue) const;

    friend bool operator==(const QueueSelection&, const QueueSelection&) = default;
};

}  // namespace reelcrate
