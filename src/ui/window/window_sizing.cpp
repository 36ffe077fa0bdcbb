#include "ui/window/window_sizing.h"

#include <algorithm>
#include <cmath>

namespace reelcrate {

namespace {

QSizeF availableSize(const QSizeF& visible) {
    constexpr QSizeF margin{40, 30};
    constexpr QSizeF least{980, 620};
    return (visible - margin).expandedTo(least);
}

QRectF movedOnto(QRectF frame, const QRectF& visible) {
    if (frame.right() > visible.right())
        frame.moveRight(visible.right());
    if (frame.left() < visible.left())
        frame.moveLeft(visible.left());
    // What is too high for the screen stands on its bottom edge.
    if (frame.top() < visible.top())
        frame.moveBottom(std::min(visible.bottom(), visible.top() + frame.height()));
    if (frame.bottom() > visible.bottom())
        frame.moveBottom(visible.bottom());
    return frame;
}

}  // namespace

ReadableWindow readableWindow(const QRectF& frame, const std::optional<QRectF>& visible) {
    const QSizeF available = availableSize(visible ? visible->size() : preferredWindowSize);
    ReadableWindow window{available.boundedTo(minimumWindowSize), {}};
    const double preferred = std::min(available.width(), preferredWindowSize.width());
    const QSizeF target(std::min(available.width(), std::max(frame.width(), preferred)),
                        available.height());
    constexpr double close = 1;
    if (std::abs(target.width() - frame.width()) <= close &&
        std::abs(target.height() - frame.height()) <= close)
        return window;
    const QRectF grown(frame.topLeft(), target);
    window.frame = visible ? movedOnto(grown, *visible) : grown;
    return window;
}

}  // namespace reelcrate
