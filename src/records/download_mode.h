#pragma once

#include <QString>

#include <array>
#include <optional>

/// The output kind of a download run. A plain value; any thread.
namespace reelcrate {

enum class DownloadMode { audio, video };

/// In the order in which a choice of modes shows them.
inline constexpr std::array allDownloadModes{DownloadMode::audio, DownloadMode::video};

/// "MP3" or "MP4"; also the mode's identity.
inline QString rawValue(DownloadMode mode) {
    return mode == DownloadMode::audio ? QStringLiteral("MP3") : QStringLiteral("MP4");
}

/// The mode with exactly this label (case-sensitive), or nothing.
inline std::optional<DownloadMode> downloadModeFromRawValue(const QString& rawValue) {
    for (DownloadMode mode : allDownloadModes) {
        if (reelcrate::rawValue(mode) == rawValue)
            return mode;
    }
    return std::nullopt;
}

/// One of two values by mode, for the many texts and numbers that differ between songs and videos.
template <typename Value>
constexpr Value byMode(DownloadMode mode, Value audio, Value video) {
    return mode == DownloadMode::audio ? audio : video;
}

}  // namespace reelcrate
