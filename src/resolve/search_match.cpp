#include "resolve/search_match.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace reelcrate {

namespace {

constexpr double sameSeconds = 3;
constexpr double goodSeconds = 10;
constexpr double mostSeconds = 30;
/// What a song is seldom as long as, where no length is told.
constexpr double longestUnknown = 15 * 60;

// What each thing that speaks for or against a hit is worth.
constexpr double sameLengthWorth = 30;
constexpr double goodLengthWorth = 20;
constexpr double titleWorth = 40;
constexpr double topicWorth = 22;
constexpr double channelWorth = 15;
constexpr double artistInTitleWorth = 11;
constexpr double noArtistCost = 15;
constexpr double versionCost = 32;
constexpr double tooLongCost = 40;
constexpr double officialWorth = 4;
constexpr double extraWordCost = 0.7;
constexpr double rankCost = 1;

/// Each line holds the words for one kind of version, folded; several words stand together.
/// A song that is wanted in this kind has one of them, in whatever language.
constexpr std::array versions{
    u"live|livesession|en vivo|ao vivo|en directo|dal vivo|en concert|in concert|concert|konzert|"
    u"концерт|вживую|концерта|концерте|live in|tour|canli|na zywo|festival|ライブ|라이브|现场|現場",
    u"karaoke|караоке|カラオケ|노래방|sing along|singalong|backing track|卡拉ok|playback|ktv",
    u"cover|covers|covered|coverd|кавер|カバー|커버|翻唱|歌ってみた|弾いてみた|叩いてみた|tribute|"
    u"made famous by|in the style of|originally performed by|reprise de|versao de|cover version",
    u"remix|rmx|remixed|ремикс|リミックス|리믹스|bootleg|mashup|club mix|extended mix|vip mix|flip|"
    u"dance mix|edm|phonk|house version|hardstyle|techno",
    u"sped up|spedup|speed up|speedup|nightcore|ускоренная|ускорено|fast version|spedup version",
    u"slowed|slowed down|замедленная|замедлено|daycore|reverb|slow version|ralentie",
    u"instrumental|instrumentals|инструментал|минус|минусовка|インスト|off vocal|伴奏|"
    u"inst|instrumentale|instrumentaal|piano version|orchestral|orchestra",
    u"8d|8d audio|9d|16d|8д|360 audio",
    u"reaction|reacts|react|reacting|reaccion|reacciona|reacao|reazione|反应|реакция|"
    u"リアクション|리액션|first time hearing",
    u"hour|hours|1h|10h|час|часа|часов|heure|heures|stunde|stunden|horas|1 hora|時間|시간|loop|"
    u"looped|on repeat",
    u"acoustic|acoustica|acustico|acustica|akustik|acoustique|акустика|акустическая|unplugged|"
    u"アコースティック|어쿠스틱|stripped",
    u"tutorial|lesson|how to play|урок|разбор|guitar tab|drum cover|piano cover|chords|bass "
    u"boosted|"
    u"bassboosted|8 bit|8bit|chipmunk|music box|オルゴール|ringtone",
    u"teaser|trailer|making of|behind the scenes|preview|snippet|parody|пародия|parodie|interview|"
    u"dance practice|choreography|メイキング|explained|documentary",
    u"acapella|a cappella|acappella|vocals only|акапелла|アカペラ",
};

/// Words that say nothing of which song it is.
const QSet<QString>& neutralWords() {
    static const QSet<QString> words = [] {
        const QString all = QStringLiteral(
            "official officiel oficial offiziell audio video videoclip clip music musicvideo mv m "
            "v "
            "lyrics lyric letra hd hq 4k feat ft featuring with the a an remaster remastered "
            "version visualizer visualiser full song single album mono stereo original radio edit "
            "официальный клип аудио премьера текст песни 公式 公式mv 歌詞 公式ビデオ from deluxe "
            "mix explicit clean topic vevo prod by and y et und i и");
        const QStringList list = all.split(u' ');
        return QSet<QString>(list.begin(), list.end());
    }();
    return words;
}

/// Without case and accents, and with a blank for all that is neither letter nor digit.
QString folded(const QString& text) {
    QString result;
    for (const char32_t scalar : text.normalized(QString::NormalizationForm_KD).toUcs4()) {
        // The marks that make other letters of kana are no accents.
        if (scalar == 0x3099 || scalar == 0x309A || QChar::isLetterOrNumber(scalar))
            result += QChar::fromUcs4(scalar);
        else if (QChar::category(scalar) != QChar::Mark_NonSpacing && scalar != U'\'' &&
                 scalar != U'\u2019')
            result += u' ';
    }
    return result.toCaseFolded().normalized(QString::NormalizationForm_KC).simplified();
}

bool isWrittenWithoutBlanks(const QString& word) {
    const QList<uint> codes = word.toUcs4();
    return std::any_of(codes.begin(), codes.end(), [](char32_t scalar) {
        const auto script = QChar::script(scalar);
        return script == QChar::Script_Han || script == QChar::Script_Hiragana ||
               script == QChar::Script_Katakana || script == QChar::Script_Hangul ||
               script == QChar::Script_Thai;
    });
}

/// Whether the folded words stand in the folded text, at word borders where the script has such.
bool holds(const QString& text, const QString& words) {
    if (words.isEmpty())
        return false;
    if (isWrittenWithoutBlanks(words))
        return QString(text).remove(u' ').contains(QString(words).remove(u' '));
    return (u' ' + text + u' ').contains(u' ' + words + u' ');
}

bool isOfVersion(QStringView words, const QString& text) {
    for (const QStringView each : words.split(u'|')) {
        if (holds(text, folded(each.toString())))
            return true;
    }
    return false;
}

/// A wanted title, taken apart once for all hits.
class Wanted {
public:
    explicit Wanted(const WantedSong& song) : m_seconds(song.seconds), m_all(folded(song.title)) {
        const qsizetype dash = song.title.indexOf(QStringLiteral(" - "));
        m_name = folded(dash < 0 ? song.title : song.title.mid(dash + 3));
        for (const QString& word : m_name.split(u' ', Qt::SkipEmptyParts)) {
            if (!neutralWords().contains(word))
                m_words.append(word);
        }
        if (m_words.isEmpty())
            m_words = m_name.split(u' ', Qt::SkipEmptyParts);
        if (dash < 0)
            return;
        static const QRegularExpression separators(
            QStringLiteral(R"(,|;|&| x | feat\.? | ft\.? | and )"),
            QRegularExpression::CaseInsensitiveOption);
        m_artists.append(folded(song.title.left(dash)));
        for (const QString& artist : song.title.left(dash).split(separators)) {
            if (const QString name = folded(artist); !name.isEmpty() && !m_artists.contains(name))
                m_artists.append(name);
        }
    }

    struct Judgement {
        double worth = 0;
        bool isCertain = true;
    };

    bool isAsLong(const SearchHit& hit) const {
        return !m_seconds || (hit.seconds && std::abs(*hit.seconds - *m_seconds) <= mostSeconds);
    }

    Judgement judge(const SearchHit& hit) const {
        const QString title = folded(hit.title);
        const double words = wordsIn(title);
        const double artist = artistWorth(title, folded(hit.channel));
        const int differences = differentVersions(title);
        Judgement judgement;
        judgement.worth = lengthWorth(hit.seconds) + titleWorth * words + artist -
                          versionCost * differences - extraWordCost * extraWords(title);
        if (holds(title, QStringLiteral("official")))
            judgement.worth += officialWorth;
        judgement.isCertain =
            differences == 0 && words > 0.5 && (m_artists.isEmpty() || artist > 0);
        return judgement;
    }

private:
    double lengthWorth(const std::optional<double>& seconds) const {
        if (!m_seconds)
            return seconds && *seconds > longestUnknown ? -tooLongCost : 0;
        const double difference = std::abs(seconds.value_or(0) - *m_seconds);
        if (difference <= sameSeconds)
            return sameLengthWorth - difference;
        if (difference <= goodSeconds)
            return goodLengthWorth - difference;
        return (mostSeconds - difference) / 4;
    }

    /// How many of the title's words the hit has, as a fraction.
    double wordsIn(const QString& title) const {
        if (m_words.isEmpty())
            return 0;
        const auto found = std::count_if(m_words.begin(), m_words.end(),
                                         [&](const QString& word) { return holds(title, word); });
        return static_cast<double>(found) / static_cast<double>(m_words.size());
    }

    double artistWorth(const QString& title, const QString& channel) const {
        if (m_artists.isEmpty())
            return 0;
        double worth = -noArtistCost;
        for (const QString& artist : m_artists) {
            const QString joined = QString(channel).remove(u' ');
            const QString name = QString(artist).remove(u' ');
            if (channel == artist + QStringLiteral(" topic"))
                worth = std::max(worth, topicWorth);
            else if (holds(channel, artist) || joined == name ||
                     joined == name + QStringLiteral("vevo") ||
                     joined == name + QStringLiteral("official") ||
                     joined == name + QStringLiteral("music"))
                worth = std::max(worth, channelWorth);
            else if (holds(title, artist))
                worth = std::max(worth, artistInTitleWorth);
        }
        return worth;
    }

    int differentVersions(const QString& title) const {
        return static_cast<int>(
            std::count_if(versions.begin(), versions.end(), [&](QStringView words) {
                return isOfVersion(words, m_all) != isOfVersion(words, title);
            }));
    }

    int extraWords(const QString& title) const {
        int extra = 0;
        for (const QString& word : title.split(u' ', Qt::SkipEmptyParts))
            extra += holds(m_all, word) || neutralWords().contains(word) ? 0 : 1;
        return extra;
    }

    std::optional<double> m_seconds;
    QString m_all;
    QString m_name;
    QStringList m_words;
    QStringList m_artists;
};

}  // namespace

std::optional<SearchMatch> bestHit(const WantedSong& wanted, const QList<SearchHit>& hits) {
    const Wanted song(wanted);
    std::optional<SearchMatch> best;
    double most = 0;
    for (qsizetype i = 0; i < hits.size(); ++i) {
        if (!song.isAsLong(hits.at(i)))
            continue;
        const auto [worth, isCertain] = song.judge(hits.at(i));
        const double ranked = worth - rankCost * static_cast<double>(i);
        if (best && ranked <= most)
            continue;
        most = ranked;
        best = SearchMatch{i, isCertain};
    }
    return best;
}

}  // namespace reelcrate
