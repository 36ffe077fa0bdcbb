#include "download/output_parsing.h"

#include "base/text.h"
#include "download/progress_seed.h"
#include "records/row_texts.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longestDetail = 120;     // characters
constexpr qsizetype longestCutDetail = 117;  // characters, before the dots

struct ModeText {
    QLatin1String audio;
    QLatin1String video;

    QString operator()(DownloadMode mode) const { return byMode(mode, audio, video); }
};

constexpr ModeText preparing{row_text::preparingSong, row_text::preparingVideo};
constexpr ModeText downloading{row_text::downloadingSong, row_text::downloadingVideo};
constexpr ModeText saving{row_text::savingSong, row_text::savingVideo};
constexpr ModeText savingMP3{row_text::savingSong, row_text::savingSong};
constexpr ModeText savingMP4{row_text::savingVideo, row_text::savingVideo};
constexpr ModeText originalDeleted{row_text::examiningSong, row_text::savingVideo};
constexpr ModeText usingExisting{"Using Existing Download"_L1, "Using Existing Download"_L1};

struct Crawl {
    double target = 0;
    double durationSeconds = 0;
};

Crawl preparationCrawl(const DownloadItem& row) {
    const PreparationProgressProfile profile = preparationProgressProfile(row);
    return {.target = profile.target, .durationSeconds = profile.durationSeconds};
}

Crawl sourceCrawl(const DownloadItem& row) {
    const double preparation = preparationProgressProfile(row).target;
    if (isSearchedFor(row.source)) {
        return {.target = std::min(preparation + 0.03 * (1 + progressSeed(row, 31)), 0.45),
                .durationSeconds = 24 + 38 * progressSeed(row, 37)};
    }
    return {.target = std::min(preparation + 0.04 * (1 + progressSeed(row, 41)), 0.34),
            .durationSeconds = 12 + 22 * progressSeed(row, 43)};
}

Crawl transferCrawl(const DownloadItem& row) {
    const double target = isSearchedFor(row.source) ? 0.43 + 0.05 * progressSeed(row, 47)
                                                    : 0.35 + 0.08 * progressSeed(row, 53);
    return {.target = target, .durationSeconds = 8 + 14 * progressSeed(row, 59)};
}

struct StageRule {
    std::array<QLatin1String, 3> words;  // any of them, lower-case; unused ones are null
    ModeText detail;
    Crawl audio;
    Crawl video;
    Crawl (*crawlOfRow)(const DownloadItem&) = nullptr;  // where it depends on the row instead
};

constexpr StageRule songSearch{
    {"ytsearch"_L1, "search"_L1, "extracting url"_L1}, preparing, {}, {}, preparationCrawl};

// The first that applies decides.
constexpr std::array stageRules{
    StageRule{{"downloading webpage"_L1, "extracting"_L1}, preparing, {}, {}, sourceCrawl},
    StageRule{{"[download] destination"_L1, "destination:"_L1}, downloading, {}, {}, transferCrawl},
    StageRule{{"[extractaudio]"_L1}, savingMP3, {0.86, 5}, {0.86, 5}},
    StageRule{{"[embedthumbnail]"_L1}, saving, {0.88, 2}, {0.92, 2}},
    StageRule{{"[metadata]"_L1}, saving, {0.89, 2}, {0.94, 2}},
    StageRule{{"[merger]"_L1, "merging formats"_L1, "[videoremuxer]"_L1},
              savingMP4,
              {0.92, 5},
              {0.92, 5}},
    StageRule{{"deleting original"_L1}, originalDeleted, {0.90, 1.5}, {0.96, 1.5}},
    StageRule{{"has already been downloaded"_L1}, usingExisting, {0.82, 1}, {0.82, 1}},
};

bool applies(const StageRule& rule, const QString& loweredPiece) {
    return std::any_of(rule.words.begin(), rule.words.end(), [&](QLatin1String word) {
        return !word.isEmpty() && loweredPiece.contains(word);
    });
}

const StageRule* ruleFor(const DownloadItem& row, const QString& loweredPiece) {
    if (isSearchedFor(row.source) && applies(songSearch, loweredPiece))
        return &songSearch;
    for (const StageRule& rule : stageRules) {
        if (applies(rule, loweredPiece))
            return &rule;
    }
    return nullptr;
}

std::optional<StageBegun> stageBegun(const DownloadItem& row, DownloadMode mode,
                                     const QString& piece) {
    const StageRule* const rule = ruleFor(row, piece.toLower());
    if (rule == nullptr)
        return std::nullopt;
    const Crawl crawl = rule->crawlOfRow != nullptr ? rule->crawlOfRow(row)
                                                    : byMode(mode, rule->audio, rule->video);
    return StageBegun{.detail = rule->detail(mode),
                      .target = crawl.target,
                      .durationSeconds = crawl.durationSeconds};
}

// The first percentage of the progress marker, or else of yt-dlp's own progress line.
std::optional<double> percentage(const QString& piece) {
    static const std::array patterns{
        QRegularExpression(QStringLiteral(R"(RCR_PROGRESS:\s*([0-9]+(?:\.[0-9]+)?)\s*%)"),
                           QRegularExpression::CaseInsensitiveOption),
        QRegularExpression(QStringLiteral(R"(\[download\]\s+([0-9]+(?:\.[0-9]+)?)%)"),
                           QRegularExpression::CaseInsensitiveOption),
    };
    for (const QRegularExpression& pattern : patterns) {
        bool isNumber = false;
        const double number = pattern.match(piece).capturedView(1).toDouble(&isNumber);
        if (isNumber)
            return number;
    }
    return std::nullopt;
}

double rowProgress(double percent, DownloadMode mode) {
    const double fraction = std::clamp(percent / 100, 0.0, 1.0);
    return mode == DownloadMode::audio ? std::min(0.46 + 0.38 * fraction, 0.84)
                                       : std::min(0.38 + 0.52 * fraction, 0.90);
}

QStringList outputLines(const QString& piece) {
    static const QRegularExpression lineBreak(QStringLiteral("[\\n\\r]"));
    return piece.split(lineBreak);
}

// yt-dlp prints a marker without a number ("N/A%") while it does not know the length. Of what it
// runs to keep a file nobody wants to know.
QString telling(const QString& piece) {
    constexpr QLatin1String marker{"RCR_PROGRESS:"};
    constexpr QLatin1String keeping{"[Exec] "};
    if (!piece.contains(marker, Qt::CaseInsensitive) && !piece.contains(keeping))
        return piece;
    QStringList lines = outputLines(piece);
    lines.removeIf([&](const QString& line) {
        return line.contains(marker, Qt::CaseInsensitive) || line.startsWith(keeping);
    });
    return lines.join(u'\n').trimmed();
}

QString shortened(const QString& line) {
    if (!hasAtLeastCharacters(line, longestDetail + 1))
        return line;
    return firstCharacters(line, longestCutDetail) + QStringLiteral("...");
}

}  // namespace

QString downloadDetail(const QString& piece, DownloadMode mode) {
    QString line = piece.trimmed();
    for (const QString& part : outputLines(line))
        line = part.trimmed().isEmpty() ? line : part.trimmed();

    if (line.contains(u"[download] Destination"))
        return downloading(mode);
    if (line.contains(u"[ExtractAudio]"))
        return savingMP3(mode);
    if (line.contains(u"[EmbedThumbnail]") || line.contains(u"[Metadata]"))
        return saving(mode);
    if (line.contains(u"[Merger]"))
        return savingMP4(mode);
    if (line.contains(u"Deleting original"))
        return originalDeleted(mode);
    return shortened(line);
}

OutputEffect outputEffect(const DownloadItem& row, DownloadMode mode, const QString& piece) {
    if (const std::optional<double> percent = percentage(piece)) {
        return RealProgress{.progress = std::max(rowProgress(*percent, mode), row.progress),
                            .detail = downloading(mode)};
    }
    const QString text = telling(piece);
    if (text.isEmpty())
        return {};
    if (const std::optional<StageBegun> stage = stageBegun(row, mode, text))
        return *stage;
    return DetailOnly{downloadDetail(text, mode)};
}

}  // namespace reelcrate
