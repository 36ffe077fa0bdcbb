#include "records/source_type.h"

namespace reelcrate {

namespace {

struct Row {
    SourceType source;
    const char* rawValue;
    const char* symbol;
    Tint tint;
};

constexpr Tint gold{1.0, 0.70, 0.22, 1.0};
constexpr Tint neutralGrey{0.42, 0.44, 0.48, 1.0};

constexpr std::array rows{
    Row{SourceType::youtube, "YouTube", "play.rectangle.fill", gold},
    Row{SourceType::facebook, "Facebook", "person.2.fill", gold},
    Row{SourceType::spotify, "Spotify", "music.note.list", gold},
    Row{SourceType::link, "Link", "link", neutralGrey},
    Row{SourceType::song, "Song", "music.note", gold},
};

const Row& row(SourceType source) {
    return rows.at(static_cast<std::size_t>(source));
}

}  // namespace

QString rawValue(SourceType source) {
    return QString::fromLatin1(row(source).rawValue);
}

std::optional<SourceType> sourceTypeFromRawValue(const QString& rawValue) {
    for (const Row& candidate : rows) {
        if (rawValue == QLatin1String(candidate.rawValue))
            return candidate.source;
    }
    return std::nullopt;
}

QString symbol(SourceType source) {
    return QString::fromLatin1(row(source).symbol);
}

Tint tint(SourceType source) {
    return row(source).tint;
}

bool isSearchedFor(SourceType source) {
    return source == SourceType::spotify || source == SourceType::song;
}

}  // namespace reelcrate
