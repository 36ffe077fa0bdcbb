#include "queue/song_columns.h"

#include "base/duration_text.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace reelcrate {

namespace {

/// The letters and digits of a column's name, without case and accents: "Artist Name(s)" and
/// "artist_names" are the same.
QString folded(const QString& name) {
    QString key;
    for (const char32_t scalar : name.normalized(QString::NormalizationForm_KD).toUcs4()) {
        if (QChar::isLetterOrNumber(scalar))
            key += QChar::fromUcs4(scalar);
    }
    return key.toCaseFolded();
}

struct Names {
    ColumnKind kind;
    QStringView names;
};

// In each line, English stands first, then the exports of programs, then other languages.
constexpr std::array knownNames{
    Names{
        ColumnKind::title,
        u"title|song|track title|song title|track name|song name|track|name|songs|"
        u"titel|titelname|songtitel|lied|stück|musiktitel|título|canción|tema|titre|chanson|"
        u"morceau|música|faixa|nome da música|nome|titolo|brano|canzone|tytuł|utwór|piosenka|"
        u"nummer|låt|название|песня|трек|композиция|название песни|назва|пісня|τίτλος|τραγούδι|"
        u"şarkı|şarkı adı|parça|parça adı|曲名|タイトル|曲|楽曲|楽曲名|제목|곡명|곡|노래|노래 제목|"
        u"歌名|歌曲|歌曲名|标题|標題|שיר|שם השיר|أغنية|الأغنية|اسم الأغنية|العنوان"},
    Names{ColumnKind::artist,
          u"artist|artists|artist name|artist names|artist name(s)|track artist|performer|band|"
          u"singer|interpret|interpreten|künstler|sänger|artista|artistas|intérprete|cantante|"
          u"cantor|artiste|artistes|interprète|chanteur|wykonawca|artysta|zespół|artiest|"
          u"uitvoerder|исполнитель|артист|группа|виконавець|καλλιτέχνης|ερμηνευτής|sanatçı|"
          u"şarkıcı|アーティスト|アーティスト名|歌手|アーチスト|아티스트|가수|艺术家|艺人|演唱者|"
          u"אמן|זמר|מבצע|فنان|الفنان|المطرب"},
    Names{ColumnKind::length,
          u"length|duration|time|total time|track time|running time|duration (s)|"
          u"duration (seconds)|length (seconds)|seconds|dauer|länge|zeit|spieldauer|spielzeit|"
          u"laufzeit|duración|tiempo|durée|temps|duração|durata|czas|czas trwania|długość|duur|"
          u"speelduur|длительность|время|продолжительность|тривалість|διάρκεια|süre|時間|再生時間|"
          u"長さ|시간|재생 시간|길이|时长|時長|אורך|משך|المدة|مدة"},
    Names{ColumnKind::milliseconds,
          u"duration (ms)|duration ms|track duration (ms)|length (ms)|milliseconds|"
          u"duration in milliseconds|ms|total time (ms)|duration millis"},
    Names{ColumnKind::other,
          u"album|album name|albumname|album title|genre|genres|year|jahr|année|año|bpm|key|"
          u"comment|comments|notes|note|kommentar|bemerkung|link|url|uri|track uri|spotify id|"
          u"spotify track id|isrc|position|pos|no|nr|track number|track no|rank|when|moment|"
          u"anlass|wunsch von|requested by|added at|added by|release date|popularity|composer"},
};

const QHash<QString, ColumnKind>& kinds() {
    static const QHash<QString, ColumnKind> kinds = [] {
        QHash<QString, ColumnKind> known;
        for (const auto& [kind, names] : knownNames) {
            for (const QStringView name : names.split(u'|'))
                known.insert(folded(name.toString()), kind);
        }
        return known;
    }();
    return kinds;
}

/// Of several columns for titles the one whose name says so most plainly: beside a "Title", a
/// "Track" is a number, and a "Name" may be anything.
int plainness(const QString& name) {
    static const QStringList vague{QStringLiteral("track"), QStringLiteral("name"),
                                   QStringLiteral("nome"), QStringLiteral("nummer")};
    return vague.contains(folded(name)) ? 0 : 1;
}

std::optional<double> ofSong(double seconds) {
    constexpr double leastSeconds = 1;
    constexpr double mostSeconds = 3 * 3600;
    return seconds >= leastSeconds && seconds <= mostSeconds ? std::optional(seconds)
                                                             : std::nullopt;
}

std::optional<double> ofNumber(double number, bool inMilliseconds) {
    // Between lies what could be either.
    constexpr double mostSeconds = 3600;
    constexpr double leastMilliseconds = 10'000;
    constexpr double leastSeconds = 20;
    if (inMilliseconds || number >= leastMilliseconds)
        return ofSong(number / 1000);
    return number >= leastSeconds && number <= mostSeconds ? ofSong(number) : std::nullopt;
}

std::optional<double> ofUnits(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral(
            R"(^(?:pt)?(?:(\d+)\s*h[a-z]*)?\s*(?:(\d+)\s*m[a-z]*\.?)?\s*(?:(\d+)\s*(?:s[a-z]*\.?)?)?$)"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch() || (match.captured(1).isEmpty() && match.captured(2).isEmpty()))
        return std::nullopt;
    return ofSong(match.captured(1).toDouble() * 3600 + match.captured(2).toDouble() * 60 +
                  match.captured(3).toDouble());
}

}  // namespace

ColumnKind columnKind(const QString& name) {
    return kinds().value(folded(name), ColumnKind::none);
}

std::optional<SongColumns> songColumns(const QStringList& names) {
    SongColumns columns;
    bool hasOthers = false;
    const auto take = [](qsizetype& column, qsizetype at) {
        if (column < 0)
            column = at;
    };
    for (qsizetype at = 0; at < names.size(); ++at) {
        const QString& name = names.at(at);
        const ColumnKind kind = columnKind(name);
        hasOthers = hasOthers || (kind != ColumnKind::none && kind != ColumnKind::title);
        if (kind == ColumnKind::title &&
            (columns.title < 0 || plainness(name) > plainness(names.at(columns.title))))
            columns.title = at;
        if (kind == ColumnKind::artist)
            take(columns.artist, at);
        if (kind == ColumnKind::length)
            take(columns.length, at);
        if (kind == ColumnKind::milliseconds && !columns.inMilliseconds) {
            columns.length = at;
            columns.inMilliseconds = true;
        }
    }
    return columns.title >= 0 && hasOthers ? std::optional(columns) : std::nullopt;
}

std::optional<double> secondsOfCell(const QString& cell, bool inMilliseconds) {
    const QString text = cell.trimmed();
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (isNumber)
        return ofNumber(number, inMilliseconds);
    const auto seconds = secondsOfDuration(text);
    if (!seconds)
        return ofUnits(text);
    // A spreadsheet takes 3:45 for hours and minutes, and writes them with seconds.
    const bool isOfSpreadsheet = text.count(u':') == 2 && text.endsWith(QStringLiteral(":00"));
    return *seconds >= 3600 && isOfSpreadsheet ? std::nullopt : ofSong(*seconds);
}

}  // namespace reelcrate
