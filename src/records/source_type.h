#pragma once

#include <QString>

#include <array>
#include <optional>

/// Where a link leads, as far as the program treats links differently. A plain value; any thread.
namespace reelcrate {

/// A colour as plain sRGB components with an opacity, each 0 to 1: records know no toolkit.
struct Tint {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    friend bool operator==(const Tint&, const Tint&) = default;
};

enum class SourceType {
    youtube,
    facebook,
    spotify,
    link,
    song,  ///< no link at all: a song that a list names
};

/// In declaration order.
inline constexpr std::array allSourceTypes{SourceType::youtube, SourceType::facebook,
                                           SourceType::spotify, SourceType::link, SourceType::song};

/// The visible label, for example "YouTube".
QString rawValue(SourceType source);

/// The source with exactly this label (case-sensitive), or nothing.
std::optional<SourceType> sourceTypeFromRawValue(const QString& rawValue);

/// The name of the source's symbol, such as "play.rectangle.fill".
QString symbol(SourceType source);

Tint tint(SourceType source);

/// Whether a row of this source names its song without leading to it: what is downloaded has to be
/// searched for on the video site.
bool isSearchedFor(SourceType source);

}  // namespace reelcrate
