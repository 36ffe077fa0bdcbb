#pragma once

#include <QRectF>
#include <QSizeF>

#include <optional>

/// How large the window should be on its screen. Pure arithmetic in logical pixels, with y growing
/// downwards; frames include the window's decoration.
namespace reelcrate {

constexpr QSizeF minimumWindowSize{1080, 620};
constexpr QSizeF preferredWindowSize{1440, 1040};

struct ReadableWindow {
    QSizeF minimumSize;
    std::optional<QRectF> frame;  ///< absent when the window is large enough as it is

    friend bool operator==(const ReadableWindow&, const ReadableWindow&) = default;
};

/// Nearly as high as the screen's visible area, and as wide as is preferred or as it is. Its top
/// edge stays unless that is off the screen. `visible` is absent when there is no screen.
ReadableWindow readableWindow(const QRectF& frame, const std::optional<QRectF>& visible);

}  // namespace reelcrate
