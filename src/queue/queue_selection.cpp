#include "queue/queue_selection.h"

#include "queue/queue_store.h"

#include <algorithm>

namespace reelcrate {

namespace {

/// The ids of the rows from one index to another, whichever is first, both included.
QSet<QUuid> range(const QueueStore& queue, qsizetype one, qsizetype other) {
    QSet<QUuid> ids;
    const auto [first, last] = std::minmax(one, other);
    ids.reserve(last - first + 1);
    for (qsizetype index = first; index <= last; ++index)
        ids.insert(queue.rows().at(index).id);
    return ids;
}

qsizetype indexOf(const std::optional<QUuid>& id, const QueueStore& queue) {
    return id ? queue.indexOf(*id) : -1;
}

/// Where a step begins: at the focus, else at the first selected row in the step's direction.
std::optional<QUuid> stepStart(const QueueSelection& selection, int direction,
                               const QueueStore& queue) {
    if (selection.focus)
        return selection.focus;
    std::optional<QUuid> start;
    for (const QUuid& id : selection.ids) {
        const qsizetype index = queue.indexOf(id);
        if (index < 0)
            continue;
        const bool isEarlier =
            direction >= 0 ? index < indexOf(start, queue) : index > indexOf(start, queue);
        if (!start || isEarlier)
            start = id;
    }
    return start;
}

}  // namespace

QueueSelection QueueSelection::clicked(const QUuid& id, KeyModifiers modifiers,
                                       const QueueStore& queue) const {
    QueueSelection next = *this;
    next.keyboardScopeActive = true;
    next.focus = id;
    const bool toggles = modifiers.testFlag(KeyModifier::command);
    const qsizetype anchorIndex = indexOf(anchor, queue);
    if (modifiers.testFlag(KeyModifier::shift) && anchorIndex >= 0) {
        const QSet<QUuid> between = range(queue, anchorIndex, queue.indexOf(id));
        next.ids = toggles ? ids | between : between;
        return next;
    }
    next.anchor = id;
    if (!toggles)
        next.ids = {id};
    else if (!next.ids.remove(id))
        next.ids.insert(id);
    return next;
}

QueueSelection QueueSelection::moved(int direction, bool extending, const QueueStore& queue) const {
    const std::optional<QUuid> current = stepStart(*this, direction, queue);
    qsizetype start = indexOf(current, queue);
    if (start < 0)
        start = direction >= 0 ? -1 : queue.size();
    const qsizetype targetIndex = std::clamp<qsizetype>(start + direction, 0, queue.size() - 1);
    const QUuid target = queue.rows().at(targetIndex).id;

    QueueSelection next;
    next.keyboardScopeActive = true;
    next.focus = target;
    if (!extending) {
        next.anchor = target;
        next.ids = {target};
        return next;
    }
    next.anchor = anchor ? anchor : current.value_or(target);
    const qsizetype anchorIndex = indexOf(next.anchor, queue);
    next.ids = range(queue, anchorIndex < 0 ? targetIndex : anchorIndex, targetIndex);
    return next;
}

QueueSelection QueueSelection::allSelected(const QueueStore& queue) const {
    return {range(queue, 0, queue.size() - 1), queue.rows().first().id, queue.rows().last().id,
            true};
}

QueueSelection QueueSelection::cleared() const {
    return {{}, {}, {}, keyboardScopeActive};
}

QueueSelection QueueSelection::withoutRows(const QSet<QUuid>& removed,
                                           const QueueStore& queue) const {
    if (queue.size() == 0)
        return {{}, {}, {}, keyboardScopeActive};
    QueueSelection next = *this;
    next.ids.subtract(removed);
    // A selected row may have gone another way, when its link was read.
    const QSet<QUuid> left = visible(queue).subtract(removed);
    const auto replacedIfGone = [&](const std::optional<QUuid>& id) {
        if (!id || queue.indexOf(*id) >= 0)
            return id;
        return left.isEmpty() ? std::nullopt : std::optional(*left.cbegin());
    };
    next.anchor = replacedIfGone(anchor);
    next.focus = replacedIfGone(focus);
    return next;
}

QSet<QUuid> QueueSelection::visible(const QueueStore& queue) const {
    return queue.idsAmong(ids);
}

}  // namespace reelcrate
