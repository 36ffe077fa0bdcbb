#include "resolve/search_match.h"

#include "base/duration_text.h"
#include "support/texts.h"

#include <gtest/gtest.h>

namespace reelcrate {
namespace {

struct Case {
    const char* wanted;  ///< title|length
    /// title|channel|length, a line each; the right one begins with an asterisk, none where the
    /// search is to decide.
    const char* hits;
};

const Case cases[] = {
    {"Queen - Bohemian Rhapsody|5:55",
     "Queen - Bohemian Rhapsody (Live Aid 1985)|Queen Official|5:52\n"
     "*Queen – Bohemian Rhapsody (Official Video Remastered)|Queen Official|6:00\n"
     "Bohemian Rhapsody - Queen (Karaoke Version)|Sing King|5:55\n"
     "Bohemian Rhapsody (Cover)|Some Choir|5:54\nBohemian Rhapsody REACTION|Vocal Coach|14:10"},
    {"Queen - Bohemian Rhapsody|5:55",
     "Queen – Bohemian Rhapsody (Official Video Remastered)|Queen Official|6:00\n"
     "*Bohemian Rhapsody|Queen - Topic|5:55\nBohemian Rhapsody 1 hour|Loops|1:00:02"},
    {"Queen - Bohemian Rhapsody - Live Aid|2:28",
     "Queen – Bohemian Rhapsody (Official Video)|Queen Official|6:00\n"
     "*Bohemian Rhapsody (Live Aid, July 1985)|Queen - Topic|2:29\n"
     "Bohemian Rhapsody Short Karaoke|Sing King|2:28"},
    {"Toto - Africa|4:55",
     "Africa (Toto) - Instrumental|Backing|4:55\nToto - Africa (8D AUDIO)|8D Tunes|4:56\n"
     "*Toto - Africa (Official HD Video)|TotoVEVO|4:32\nAfrica but slowed + reverb|slowd|5:20\n"
     "Weezer - Africa|weezer|3:58"},
    {"Weezer - Africa|3:58",
     "Toto - Africa|TotoVEVO|4:32\n*Weezer - Africa (starring Weird Al)|weezer|4:00\n"
     "Weezer - Africa (cover by me)|me|3:58"},
    {"Adele - Hello|4:55",
     "Lionel Richie - Hello|LionelRichieVEVO|5:28\n*Adele - Hello (Official Music "
     "Video)|AdeleVEVO|5:06\n"
     "Hello - Adele (Karaoke)|Karaoke Hits|4:56\nHello - Adele (Boyce Avenue cover)|Boyce "
     "Avenue|4:50"},
    {"Lionel Richie - Hello|4:10",
     "Adele - Hello|AdeleVEVO|4:15\n*Lionel Richie - Hello|Lionel Richie - Topic|4:11\n"
     "Hello|Adele - Topic|4:09"},
    {"Ed Sheeran - Perfect|4:23",
     "*Ed Sheeran - Perfect (Official Music Video)|Ed Sheeran|4:40\n"
     "Perfect (Lyrics) - Ed Sheeran sped up|speedy songs|3:55\nPerfect|Fairground Attraction - "
     "Topic|3:35"},
    {"Ed Sheeran - Perfect|4:23",
     "Ed Sheeran - Perfect (Official Music Video)|Ed Sheeran|4:40\n*Perfect|Ed Sheeran - "
     "Topic|4:24\n"
     "Perfect Symphony (with Andrea Bocelli)|Ed Sheeran|4:25"},
    {"Fairground Attraction - Perfect|3:37",
     "Ed Sheeran - Perfect|Ed Sheeran|4:21\n*Fairground Attraction - Perfect (Video)|"
     "FairgroundAttractVEVO|3:33\nPerfect (Live)|Fairground Attraction - Topic|3:40"},
    {"Кино - Группа крови|4:45",
     "Кино — Группа крови (караоке)|Караоке по-русски|4:45\n"
     "Группа крови (кавер на Кино)|Гараж|4:44\n*Кино - Группа крови|Кино - Topic|4:46\n"
     "КИНО - Группа крови (концерт, 1990)|Архив|5:01"},
    {"Кино - Пачка сигарет|4:28",
     "Виктор Цой - Пачка сигарет (минус)|Минусовки|4:28\n"
     "*Кино - Пачка сигарет (Official audio)|Moroz Records|4:29\nПачка сигарет на гитаре "
     "разбор|Урок|4:20"},
    {"Земфира - Искала|3:33",
     "ЗЕМФИРА — Искала (live)|Земфира|3:36\n*Искала|Zemfira|3:33\nЗемфира - Искала (ремикс)|dj "
     "x|3:34"},
    {"Мумий Тролль - Утекай|2:21",
     "*Мумий Тролль - Утекай|Mumiy Troll|2:24\nМумий Тролль — Утекай (концерт)|TV|2:40\n"
     "Утекай 1 час|Повтор|1:00:00"},
    {"米津玄師 - Lemon|4:16",
     "米津玄師 - Lemon (歌ってみた)|ある歌い手|4:15\nLemon / 米津玄師 "
     "カラオケ|カラオケ歌っちゃ王|4:16\n"
     "*米津玄師 - Lemon|Kenshi Yonezu 米津玄師|4:36\nLemon ピアノ インスト|ピアノ|4:16"},
    {"YOASOBI - 夜に駆ける|4:18",
     "【オルゴール】夜に駆ける|オルゴール|4:18\nYOASOBI「夜に駆ける」ライブ|Ayase / YOASOBI|4:20\n"
     "*YOASOBI「夜に駆ける」 Official Music Video|Ayase / YOASOBI|4:23\n夜に駆ける "
     "1時間耐久|x|1:00:00"},
    {"宇多田ヒカル - First Love|4:17",
     "宇多田ヒカル「First Love」Live Ver.|Hikaru Utada|4:40\nFirst Love|Nikka Costa - Topic|4:00\n"
     "*宇多田ヒカル - First Love|Hikaru Utada|4:18"},
    {"いきものがかり - ありがとう|5:42",
     "ありがとう (カバー)|歌姫|5:40\n*いきものがかり 『ありがとう』Music "
     "Video|いきものがかり|5:46\n"
     "ありがとう|SMAP - Topic|5:30"},
    {"BTS - 봄날|4:34",
     "BTS (방탄소년단) '봄날 (Spring Day)' dance practice|BTS|4:33\n"
     "*BTS (방탄소년단) '봄날 (Spring Day)' Official MV|HYBE LABELS|4:48\n봄날 커버|가수|4:34\n"
     "봄날 노래방|TJ|4:34"},
    {"周杰倫 - 稻香|3:43",
     "稻香 伴奏|KTV|3:43\n周杰倫 稻香 翻唱|小明|3:42\n*周杰倫 Jay Chou【稻香 Rice Field】Official "
     "MV|"
     "周杰倫 Jay Chou|3:43"},
    {"Robin Schulz, Alligatoah - Willst Du|3:15",
     "Alligatoah - Willst du (Official Video)|Alligatoah|4:22\n"
     "*Alligatoah - Willst Du (Robin Schulz Remix)|Trailerpark|3:16\nWillst Du "
     "Karaoke|Singit|3:15"},
    {"Mr. Probz - Waves - Robin Schulz Radio Edit|3:28",
     "Mr. Probz - Waves (Official Video)|Mr. Probz|3:31\n"
     "*Mr. Probz - Waves (Robin Schulz Radio Edit)|Ultra|3:28\nWaves sped up|x|3:00"},
    {"Cher - Believe - Club Mix|4:30",
     "Cher - Believe [Official Music Video]|Cher|3:59\n*Cher - Believe (Club Mix)|Cher - "
     "Topic|4:31\n"
     "Cher - Believe (8D)|8d|4:30"},
    {"Nirvana - The Man Who Sold the World - Live|4:20",
     "David Bowie - The Man Who Sold the World|David Bowie|3:58\n"
     "*Nirvana - The Man Who Sold The World (MTV Unplugged, Live)|NirvanaVEVO|4:21\n"
     "The Man Who Sold the World (studio cover)|x|4:20"},
    {"Live - Lightning Crashes|5:26",
     "Lightning Crashes Karaoke|K|5:25\n*Live - Lightning Crashes|LiveVEVO|5:27\n"
     "Lightning Crashes (Cover)|b|5:26"},
    {"Paul McCartney, Wings - Live And Let Die|3:12",
     "Guns N' Roses - Live And Let Die|GunsNRosesVEVO|3:03\n"
     "*Live And Let Die|Wings - Topic|3:13\nLive and Let Die Paul McCartney reaction|rr|3:12"},
    {"The Housemartins - Happy Hour|2:22",
     "*The Housemartins - Happy Hour|HousemartinsVEVO|2:24\nHappy Hour 1 hour loop|x|1:00:00\n"
     "Happy Hour (karaoke)|K|2:22"},
    {"Robyn - Dancing On My Own|4:48",
     "Calum Scott - Dancing On My Own|CalumScottVEVO|4:20\n*Robyn - Dancing On My "
     "Own|RobynVEVO|4:52\n"
     "Dancing On My Own (Tiësto Remix)|Calum Scott|4:47"},
    {"Calum Scott - Dancing On My Own - Tiësto Remix|3:35",
     "Calum Scott - Dancing On My Own|CalumScottVEVO|4:20\n"
     "*Calum Scott - Dancing On My Own (Tiësto Remix)|CalumScottVEVO|3:36\n"
     "Dancing On My Own|Robyn - Topic|3:40"},
    {"Luis Fonsi, Daddy Yankee - Despacito|3:49",
     "Luis Fonsi - Despacito (en vivo)|Luis Fonsi|3:50\n"
     "Luis Fonsi, Daddy Yankee - Despacito (Remix) ft. Justin Bieber|LuisFonsiVEVO|3:49\n"
     "*Luis Fonsi - Despacito ft. Daddy Yankee|LuisFonsiVEVO|4:05\nDespacito karaoke|K|3:48"},
    {"Michel Teló - Ai Se Eu Te Pego|2:46",
     "Michel Teló - Ai Se Eu Te Pego (Ao Vivo)|MichelTeloVEVO|2:48\n"
     "*Ai Se Eu Te Pego|Michel Teló - Topic|2:46\nAi se eu te pego reação|x|8:00"},
    {"Zaz - Je veux|3:38",
     "Zaz - Je Veux (en concert)|Zaz|3:50\n*Zaz - Je veux (Clip officiel)|Zaz|3:37\n"
     "Je veux karaoké|K|3:38\nJe veux (reprise de Zaz)|p|3:38"},
    {"Herbert Grönemeyer - Mensch|4:57",
     "Herbert Grönemeyer - Mensch (Konzert)|Grönemeyer|5:05\n"
     "*Herbert Grönemeyer - Mensch (Offizielles Musikvideo)|Herbert Grönemeyer|4:55\n"
     "Mensch (Karaoke)|K|4:57"},
    {"Beyoncé - Halo|4:21", "Beyoncé - Halo|beyonceVEVO|3:45\n*Halo|Beyoncé - Topic|4:22"},
    {"Sia - Cheap Thrills|3:31",
     "Sia - Cheap Thrills ft. Sean Paul (Lyric Video)|Sia|3:45\n*Cheap Thrills|Sia - Topic|3:32\n"
     "Cheap Thrills nightcore|n|3:30"},
    {"Journey - Don't Stop Believin'|4:10",
     "Journey - Don't Stop Believin' (Live in Houston)|journeyVEVO|4:18\n"
     "Don’t Stop Believin’ Glee Cast|Glee Cast - Topic|3:50\n"
     "*Don't Stop Believin' (2022 Remaster)|Journey - Topic|4:11"},
    {"AC/DC - T.N.T.|3:34",
     "AC/DC - T.N.T. (Live At River Plate)|AC/DC|3:40\n*T.N.T.|AC/DC - Topic|3:35\n"
     "TNT Tutorial|guitar|3:34"},
    {"P!nk - So What|3:35",
     "So What|Miles Davis - Topic|9:22\n*P!nk - So What (Official Video)|PinkVEVO|3:48\n"
     "So What - Pink (Instrumental)|i|3:35"},
    {"Eurythmics - Sweet Dreams (Are Made of This)|3:36",
     "Marilyn Manson - Sweet Dreams|MarilynMansonVEVO|4:30\n"
     "*Eurythmics, Annie Lennox, Dave Stewart - Sweet Dreams (Are Made Of This) (Official Video)|"
     "EurythmicsVEVO|3:36\nSweet Dreams slowed|x|3:55"},
    {"Israel Kamakawiwo'ole - Over the Rainbow|3:31",
     "Judy Garland - Over the Rainbow|JudyVEVO|2:45\n"
     "*OFFICIAL Somewhere over the Rainbow - Israel \"IZ\" Kamakawiwoʻole|Mountain Apple|3:47\n"
     "Over the Rainbow ukulele lesson|uke|3:31"},
    {"Joe Dassin - Les Champs-Élysées|2:40",
     "Les Champs Elysées (Piano cover)|p|2:40\n*Les Champs-Élysées|Joe Dassin - Topic|2:41\n"
     "Les Champs-Elysées - Joe Dassin 10 hours|x|10:00:00"},
    {"Some Band - Unknown Song|3:30", "Unknown Song 10 hours|x|10:00:00\nOther|y|5:00"},
    {"Some Band - Unknown Song|3:30", "Unknown Song|Some Band - Topic|NA\nOther|y|4:01"},
    {"Some Band - Unknown Song|3:30", ""},
    {"Toto - Africa|",
     "Africa documentary|Geo|50:00\nToto - Africa (Live)|Toto|5:30\n"
     "*Toto - Africa (Official HD Video)|TotoVEVO|4:32\nAfrica|Weezer - Topic|3:58"},
    {"Toto - Africa|", "Toto - Africa greatest hits mix|Toto|1:10:00\n*Africa|Toto - Topic|4:55"},
    // Of hits that differ in nothing else, the official one; of those that hardly differ, the
    // first.
    {"Toto - Africa|4:55",
     "Toto - Africa Video|Hits|4:55\n*Toto - Africa Official Video|Hits|4:55"},
    {"Toto - Africa|4:55", "*Toto - Africa Today|Hits|4:55\nToto - Africa|Hits|4:55"},
    // What a channel, a version or an absurd length weighs, all else being nearly equal.
    {"Toto - Africa|4:55", "Toto - Africa|Toto|4:55\n*Toto - Africa|Toto - Topic|4:55"},
    {"Toto - Africa|4:55", "Toto - Africa|Hits|4:55\n*Toto - Africa|TotoVEVO|4:55"},
    {"Toto - Africa|4:55", "Toto - Africa|Hits|4:55\n*Toto - Africa|Toto Fans|4:55"},
    {"Toto - Africa|4:55", "Toto - Africa Rains Down Here|Hits|4:55\n*Toto - Africa|Hits|4:55"},
    {"周杰倫 - 稻香|3:43", "稻香|X|3:43\n*周杰倫稻香|X|3:43"},
    {"Toto - Africa|4:55", "Toto - Africa|Hits|5:06\n*Toto - Africa|Hits|5:04"},
    {"Toto - Africa|", "Toto - Africa|TotoVEVO|50:00\n*Toto - Africa|Hits|4:55"},
    {"Nirvana - Lake of Fire - Live|2:55",
     "Nirvana - Lake of Fire|Nirvana - Topic|2:55\n*Nirvana - Lake of Fire (Live)|Fan|2:58"},
    {"Bohemian Rhapsody|5:55",
     "Bohemian Rhapsody reaction|x|5:55\n*Queen – Bohemian Rhapsody|Queen Official|6:00"},
};

TEST(BestHit, IsTheSongThatIsWanted) {
    EXPECT_GE(std::size(cases), 40U);
    for (const auto& [wanted, listed] : cases) {
        SCOPED_TRACE(wanted);
        const QStringList song = text(wanted).split(u'|');
        QList<SearchHit> hits;
        qsizetype expected = -1;
        for (QString line : text(listed).split(u'\n', Qt::SkipEmptyParts)) {
            if (line.startsWith(u'*')) {
                expected = hits.size();
                line.remove(0, 1);
            }
            const QStringList parts = line.split(u'|');
            ASSERT_EQ(parts.size(), 3) << line.toStdString();
            hits.append({{}, parts.at(0), parts.at(1), secondsOfDuration(parts.at(2))});
        }
        const auto best = bestHit({song.at(0), secondsOfDuration(song.at(1))}, hits);
        EXPECT_EQ(best ? best->hit : -1, expected);
    }
}

TEST(BestHit, SaysWhenItIsNotSure) {
    const std::pair<SearchHit, bool> hits[] = {
        {{{}, text("Toto - Hold the Line"), text("TotoVEVO"), 296}, true},
        {{{}, text("Hold the Line"), text("Toto - Topic"), 300}, true},
        {{{}, text("Toto - Hold the Line (Karaoke)"), text("Sing"), 295}, false},
        {{{}, text("Hold the Line"), text("Weezer - Topic"), 295}, false},
        {{{}, text("Toto - Hold On"), text("TotoVEVO"), 295}, false},
        {{{}, text("Toto - Rosanna"), text("TotoVEVO"), 295}, false},
    };
    for (const auto& [hit, isCertain] : hits) {
        const auto best = bestHit({text("Toto - Hold the Line"), 295}, {hit});
        ASSERT_TRUE(best);
        EXPECT_EQ(best->isCertain, isCertain) << hit.title.toStdString();
    }
}

}  // namespace
}  // namespace reelcrate
