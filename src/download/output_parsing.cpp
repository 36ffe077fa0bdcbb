#include "download/output_parsing.h"

#include "base/text.h"
#include "download/progress_seed.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype longestDetail = 120;     // characters
constexpr qsizetype longestCutDetail = 117;  // characters, before the dots
constexpr QStringView alreadyDownloaded = u" has already been downloaded";
constexpr QStringView skippingFragment = u" Skipping fragment ";
constexpr QStringView deleting = u"Deleting original file ";
constexpr QStringView addingTags = u"[Metadata] ";
constexpr QStringView nextItem = u"[download] Downloading item ";
constexpr QStringView destination = u"Destination: ";
constexpr QStringView merging = u"Merging formats into ";
constexpr qsizetype longestPathLine = 65'536;  // UTF-16 units

struct ModeText {
    QLatin1String audio;
    QLatin1String video;

    QString operator()(DownloadMode mode) const { return byMode(mode, audio, video); }
};

constexpr ModeText preparing{"Preparing Song for Download"_L1, "Preparing Video for Download"_L1};
constexpr ModeText downloading{"Downloading Song"_L1, "Downloading Video"_L1};
constexpr ModeText saving{"Saving MP3"_L1, "Saving MP4"_L1};
constexpr ModeText savingMP3{"Saving MP3"_L1, "Saving MP3"_L1};
constexpr ModeText savingMP4{"Saving MP4"_L1, "Saving MP4"_L1};
constexpr ModeText originalDeleted{"Examining Song to Trim"_L1, "Saving MP4"_L1};
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
    if (row.source == SourceType::spotify) {
        return {.target = std::min(preparation + 0.03 * (1 + progressSeed(row, 31)), 0.45),
                .durationSeconds = 24 + 38 * progressSeed(row, 37)};
    }
    return {.target = std::min(preparation + 0.04 * (1 + progressSeed(row, 41)), 0.34),
            .durationSeconds = 12 + 22 * progressSeed(row, 43)};
}

Crawl transferCrawl(const DownloadItem& row) {
    const double target = row.source == SourceType::spotify ? 0.43 + 0.05 * progressSeed(row, 47)
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

constexpr StageRule spotifySearch{
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
    if (row.source == SourceType::spotify && applies(spotifySearch, loweredPiece))
        return &spotifySearch;
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

// yt-dlp prints a marker without a number ("N/A%") while it does not know the length.
QString withoutMarkerLines(const QString& piece) {
    constexpr QLatin1String marker{"RCR_PROGRESS:"};
    if (!piece.contains(marker, Qt::CaseInsensitive))
        return piece;
    QStringList lines = outputLines(piece);
    lines.removeIf([&](const QString& line) { return line.contains(marker, Qt::CaseInsensitive); });
    return lines.join(u'\n').trimmed();
}

QString withoutQuotes(QStringView text) {
    while (text.startsWith(u'"'))
        text = text.sliced(1);
    while (text.endsWith(u'"'))
        text.chop(1);
    return text.toString();
}

std::optional<QString> pathInLine(const QString& line) {
    const QString download = QStringLiteral("[download] ");
    const QStringView text(line);
    if (const qsizetype at = text.indexOf(destination); at >= 0)
        return withoutQuotes(text.sliced(at + destination.size()));
    if (const qsizetype at = text.indexOf(merging); at >= 0)
        return withoutQuotes(text.sliced(at + merging.size()).trimmed());
    if (!line.startsWith(download) || !line.contains(alreadyDownloaded))
        return std::nullopt;
    const QString path = QString(line).remove(download).remove(alreadyDownloaded.toString());
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

// These look through all of an output, however long. A line that says something about files has one
// of the words.
bool mayTellOfFiles(QStringView text) {
    return containsByRarest(text, {destination, deleting, nextItem}, u'D') ||
           containsByRarest(text, {merging, addingTags}, u'M') ||
           containsByRarest(text, {alreadyDownloaded}, u'y') ||
           containsByRarest(text, {skippingFragment}, u'k');
}

bool mentionsLogin(QStringView text) {
    return containsByRarest(text, {u"private"}, u'v', Qt::CaseInsensitive) ||
           containsByRarest(text, {u"login"}, u'g', Qt::CaseInsensitive);
}

// Behind the tool's name stands at most a reason, never text of the page.
bool leavesOutPart(const QString& line) {
    static const QRegularExpression notice(
        QStringLiteral(R"(^\[download\](?: [^:;]*;)? Skipping fragment [0-9]+ \.\.\.$)"));
    return line.contains(skippingFragment) && notice.match(line).hasMatch();
}

FileNews::Kind kindOfPath(const QString& line) {
    if (line.contains(alreadyDownloaded))
        return FileNews::Kind::wasThere;
    return line.startsWith(u"[download] ") ? FileNews::Kind::downloads : FileNews::Kind::converts;
}

std::optional<FileNews> newsOfWholeLine(const QString& line) {
    using Kind = FileNews::Kind;
    if (leavesOutPart(line))
        return FileNews{Kind::leavesOutPart, {}};
    if (line.startsWith(nextItem))
        return FileNews{Kind::nextItem, {}};
    if (line.startsWith(deleting))
        return FileNews{Kind::hasConverted, {}};
    if (line.startsWith(addingTags))
        return FileNews{Kind::addsTags, {}};
    return std::nullopt;
}

QString lastLine(QStringView text) {
    const auto isLineBreak = [](QChar c) { return c == u'\n' || c == u'\r'; };
    const auto start = std::find_if(text.crbegin(), text.crend(), isLineBreak);
    return text.last(start - text.crbegin()).toString();
}

/// A text is looked through several times: in blocks of whole lines that the nearest cache holds.
qsizetype endOfBlock(const QString& text, qsizetype start) {
    constexpr qsizetype blockSize = 4096;
    const qsizetype lineEnd = text.indexOf(u'\n', start + blockSize);
    return lineEnd < 0 ? text.size() : lineEnd + 1;
}

QString shortened(const QString& line) {
    if (!hasAtLeastCharacters(line, longestDetail + 1))
        return line;
    return firstCharacters(line, longestCutDetail) + QStringLiteral("...");
}

}  // namespace

std::optional<QString> outputPath(const QString& piece) {
    const QStringList lines = trimmedLines(piece);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        if (std::optional<QString> path = pathInLine(*line))
            return path;
    }
    return std::nullopt;
}

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
    const QString telling = withoutMarkerLines(piece);
    if (telling.isEmpty())
        return {};
    if (const std::optional<StageBegun> stage = stageBegun(row, mode, telling))
        return *stage;
    return DetailOnly{downloadDetail(telling, mode)};
}

QList<FileNews> OutputReader::read(const QString& piece) {
    QList<FileNews> news;
    qsizetype start = 0;
    while (start < piece.size()) {
        const qsizetype end = endOfBlock(piece, start);
        news += readBlock(m_unfinishedLine + piece.sliced(start, end - start));
        start = end;
    }
    return news;
}

QList<FileNews> OutputReader::readBlock(const QString& text) {
    m_mentionsLogin = m_mentionsLogin || reelcrate::mentionsLogin(text);
    // Hardly any line tells of files: taking them apart is spared.
    const QStringList lines =
        mayTellOfFiles(text) ? outputLines(text) : QStringList(lastLine(text));
    QList<FileNews> allNews;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString& line = lines.at(i);
        const bool isComplete = i + 1 < lines.size();
        // Not outputPath(): a line separator in a title is a part of the file's name, too.
        if (const std::optional<QString> path = pathInLine(line.trimmed()))
            allNews.append({kindOfPath(line), *path});
        if (const auto news = isComplete ? newsOfWholeLine(line) : std::nullopt) {
            m_leavesOutParts = m_leavesOutParts || news->kind == FileNews::Kind::leavesOutPart;
            allNews.append(*news);
        }
    }
    m_unfinishedLine = lines.constLast();
    if (m_unfinishedLine.size() > longestPathLine)
        m_unfinishedLine.clear();
    return allNews;
}

}  // namespace reelcrate
