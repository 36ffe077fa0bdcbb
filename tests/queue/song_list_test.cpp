#include "queue/song_list.h"

#include "base/duration_text.h"
#include "support/texts.h"

#include <QStringList>

namespace reelcrate {
namespace {

/// A song on one line, for a look at it.
QString shown(const NamedSong& song) {
    const QString names = song.artist + QStringLiteral(" | ") + song.title;
    return song.seconds ? names + QStringLiteral(" | ") + formatDuration(*song.seconds) : names;
}

QString readLine(const QString& line) {
    const SongList list = readSongList(line);
    return list.songs.isEmpty() ? QString() : shown(list.songs.first().song);
}

QStringList shownSongs(const char* list) {
    QStringList songs;
    for (const ListedSong& listed : readSongList(text(list)).songs)
        songs.append(QStringLiteral("%1 ").arg(listed.line) + shown(listed.song));
    return songs;
}

TEST(SongList, ReadsLinesAsPeopleWriteThem) {
    expectTexts(
        readLine,
        {{"ABBA - Dancing Queen", "ABBA | Dancing Queen"},
         {"1. Queen – Don't Stop Me Now (3:29)", "Queen | Don't Stop Me Now | 3:29"},
         {"3) Artist – Title (3:45)", "Artist | Title | 3:45"},
         {"01 - Michael Jackson - Billie Jean", "Michael Jackson | Billie Jean"},
         {"12.) Toto — Africa 4:55", "Toto | Africa | 4:55"},
         {"• Jay-Z – 99 Problems", "Jay-Z | 99 Problems"},
         {"•\tCher - Believe\t(3:59)", "Cher | Believe | 3:59"},
         {"- a-ha — Take On Me [3:48]", "a-ha | Take On Me | 3:48"},
         {"~ Daft Punk feat. Pharrell Williams - Get Lucky",
          "Daft Punk feat. Pharrell Williams | Get Lucky"},
         {"Adele ~ Hello", "Adele | Hello"},
         {"🎶 7. Cher - Believe", "Cher | Believe"},
         {"ABBA - SOS 99:59:59", "ABBA | SOS 99:59:59"},
         {"ABBA - SOS (5:00:00)", "ABBA | SOS (5:00:00)"},
         {"🎵 Bruno Mars - Marry You 3:50", "Bruno Mars | Marry You | 3:50"},
         {"❤️ Elvis Presley – Can't Help Falling in Love ❤️",
          "Elvis Presley | Can't Help Falling in Love"},
         {"5️⃣ Rihanna - Umbrella", "Rihanna | Umbrella"},
         {"- [x] **Kesha** - _TiK ToK_", "Kesha | TiK ToK"},
         {"Blink-182 - All the Small Things", "Blink-182 | All the Small Things"},
         {"Ob-La-Di, Ob-La-Da – The Beatles", "Ob-La-Di, Ob-La-Da | The Beatles"},
         {"* \"Weird Al\" Yankovic - Eat It", "\"Weird Al\" Yankovic | Eat It"},
         {"*NSYNC - Bye Bye Bye", "*NSYNC | Bye Bye Bye"},
         {"-M- - Machistador", "-M- | Machistador"},
         {"-ABBA - Fernando", "ABBA | Fernando"},
         {"+44 - When Your Heart Stops Beating", "+44 | When Your Heart Stops Beating"},
         {"50 Cent - In da Club", "50 Cent | In da Club"},
         {"1999 - Prince", "1999 | Prince"},
         {"JAY-Z - 4:44", "JAY-Z | 4:44"},
         {"Pachelbel - Canon in D (start at 0:30)", "Pachelbel | Canon in D (start at 0:30)"},
         {"Train - Marry Me 3:25 (fade at 2:00)", "Train | Marry Me 3:25 (fade at 2:00)"},
         {"ABBA - Waterloo 21:00", "ABBA | Waterloo 21:00"},
         {"Vangelis - Live Mix 21:00 min", "Vangelis | Live Mix | 21:00"},
         {"Pink Floyd - Hey You, Pt. 2 - Remastered 2011",
          "Pink Floyd | Hey You, Pt. 2 - Remastered 2011"},
         {"One - Two (feat. Three, Four) - Club", "One | Two (feat. Three, Four) - Club"},
         {"Simon & Garfunkel - Scarborough Fair / Canticle",
          "Simon & Garfunkel | Scarborough Fair / Canticle"},
         {"No Doubt - Don't Speak", "No Doubt | Don't Speak"},
         {"Dido - Thank You", "Dido | Thank You"},
         {"Tommy Tutone - 867-5309/Jenny", "Tommy Tutone | 867-5309/Jenny"},
         {"JAY-Z - 4:44 (4:44)", "JAY-Z | 4:44 | 4:44"},
         {"!!! - Heart of Hearts", "!!! | Heart of Hearts"},
         {"Ed Sheeran - ÷", "Ed Sheeran | ÷"},
         {"ABBA- Waterloo", "ABBA | Waterloo"},
         {"ABBA—Waterloo", "ABBA | Waterloo"},
         {"ABBA - Waterloo;;", "ABBA | Waterloo"},
         {"\"Earth, Wind & Fire - September\",,", "Earth, Wind & Fire | September"},
         {"Stand by Me by Ben E. King", "Ben E. King | Stand by Me"},
         {"Ben E. King - Stand by Me", "Ben E. King | Stand by Me"},
         {"Killing Me Softly With His Song by Fugees 4:58",
          "Fugees | Killing Me Softly With His Song | 4:58"},
         {"Everything I Do (I Do It for You) by Bryan Adams",
          "Bryan Adams | Everything I Do (I Do It for You)"},
         {"Hallelujah (as performed by Jeff Buckley)", "Jeff Buckley | Hallelujah"},
         {"“Bohemian Rhapsody” by Queen", "Queen | Bohemian Rhapsody"},
         {"\"Heroes\" - David Bowie", "David Bowie | Heroes"},
         {"“ABBA” – “Fernando”", "ABBA | Fernando"},
         {"„Männer“ – Die „besten” Ärzte", "Die „besten” Ärzte | Männer"},
         {"„Atemlos durch die Nacht“ von Helene Fischer",
          "Helene Fischer | Atemlos durch die Nacht"},
         {"Die Ärzte – „Männer sind Schweine“", "Die Ärzte | Männer sind Schweine"},
         {"Édith Piaf – « La Vie en rose »", "Édith Piaf | La Vie en rose"},
         {"Alors on danse — Stromae (3 min 26)", "Alors on danse | Stromae | 3:26"},
         {"Luis Fonsi ft. Daddy Yankee - Despacito (Remix) - 3:48",
          "Luis Fonsi ft. Daddy Yankee | Despacito (Remix) | 3:48"},
         {"Rosalía & C. Tangana – Antes de morirme", "Rosalía & C. Tangana | Antes de morirme"},
         {"Marília Mendonça – Infiel", "Marília Mendonça | Infiel"},
         {"Zenek Martyniuk - Przez Twe Oczy Zielone 3'35\"",
          "Zenek Martyniuk | Przez Twe Oczy Zielone | 3:35"},
         {"Кино — Группа крови", "Кино | Группа крови"},
         {"«Кукушка» — Полина Гагарина", "Полина Гагарина | Кукушка"},
         {"Алла Пугачёва - Миллион алых роз (5:30)", "Алла Пугачёва | Миллион алых роз | 5:30"},
         {"Νατάσα Θεοδωρίδου – Δεν Κάνω Κράτει", "Νατάσα Θεοδωρίδου | Δεν Κάνω Κράτει"},
         {"Tarkan - Şımarık", "Tarkan | Şımarık"},
         {"宇多田ヒカル － First Love", "宇多田ヒカル | First Love"},
         {"YOASOBI「夜に駆ける」", "YOASOBI | 夜に駆ける"},
         {"１．嵐 - Happiness", "嵐 | Happiness"},
         {"방탄소년단 – 봄날 (4:34)", "방탄소년단 | 봄날 | 4:34"},
         {"\u200Fעומר אדם - תל אביב", "עומר אדם | תל אביב"},
         {"فيروز - نسم علينا الهوى", "فيروز | نسم علينا الهوى"},
         {"First dance: Ed Sheeran - Perfect", "Ed Sheeran | Perfect"},
         {"Eröffnungstanz – Ed Sheeran – Perfect (4:23)", "Ed Sheeran | Perfect | 4:23"},
         {"[12.05.26, 18:03:11] Anna: ABBA - Super Trouper", "ABBA | Super Trouper"},
         {"12/05/2026, 18:03 - Tom: P!nk - So What", "P!nk | So What"},
         {"[00:00] Avicii - Levels: Extended", "Avicii | Levels: Extended"},
         {"Opening – Philip Glass", "Opening | Philip Glass"}});
}

TEST(SongList, WhatIsNoSongIsNeverTakenForOne) {
    expectTexts(readLine, {{"please no slow songs!!!", ""},
                           {"First dance:", ""},
                           {"Bohemian Rhapsody", ""},
                           {"Helene Fischer: Atemlos", ""},
                           {"Zaz / Je veux", ""},
                           {"Dancing Queen, ABBA", ""},
                           {"“Dancing Queen” ABBA", ""},
                           {"bitte kein „Last Christmas“", ""},
                           {"Stand by Me", ""},
                           {"Day by Day", ""},
                           {"All songs by ABBA", ""},
                           {"please no music by Helene Fischer!", ""},
                           {"dinner by 7pm", ""},
                           {"18:00 - 19:00", ""},
                           {"12/05 - 13/05", ""},
                           {"Dinner 18:30 - 20:30", ""},
                           {"Anna & Max - 12.06.2027", ""},
                           {"Tel. 0170 - 1234567", ""},
                           {"Do not play: Mr. President - Coco Jamboo", ""},
                           {"Bitte nicht: DJ Ötzi - Anton aus Tirol", ""},
                           {"Please no Macarena - it is over", ""},
                           {"Never ever: Los del Río - Macarena", ""},
                           {"NO Macarena - please!", ""},
                           {"Hi Tom - thank you so much for doing this!", ""},
                           {"Best regards - Lisa", ""},
                           {"ABBA - Waterloo, ABBA - SOS, Queen - One", ""},
                           {"ABBA - Waterloo / Toto - Africa", ""},
                           {"--- Dinner ---", ""},
                           {"ABBA -", ""},
                           {"Wham!-Last Christmas", ""},
                           {"ABBA;Waterloo", ""},
                           {"ABBA\tWaterloo - live", ""},
                           {"Tel. 0170-1234567", ""},
                           {"ABBA - SOS https://youtu.be/abcdefghijk", ""}});
    EXPECT_EQ(readLine(text("a - ").repeated(100)), QString());
}

TEST(SongList, LinesKeepTheirNumbersAndReasons) {
    const SongList list = readSongList(
        text("Our songs\r\n\r\n=====\r\nFirst dance: Etta James - At Last\r\nABBA;Waterloo\r\n"));
    EXPECT_EQ(list.songs.size(), 1);
    EXPECT_EQ(list.songs.first().line, 4);
    const QList<LineNote> unread{
        {1, text("Our songs"), text("no dash or \"by\" between an artist and a title")},
        {5, text("ABBA;Waterloo"), text("no line above names these columns")}};
    EXPECT_EQ(list.unread, unread);
    const QList<LineNote> remarks{
        {4, text("First dance: Etta James - At Last"), text("read without \"First dance:\"")}};
    EXPECT_EQ(list.remarks, remarks);
}

TEST(SongList, ListsMayBeCountedAndTellTheirOrder) {
    EXPECT_EQ(shownSongs("1 ABBA - SOS\n2 Unlimited - No Limit\n3 10cc - Donna"),
              QStringList(
                  {text("1 ABBA | SOS"), text("2 Unlimited | No Limit"), text("3 10cc | Donna")}));
    // Numbers that leave some out, begin in the middle, or are too few belong to the names.
    for (const char* list : {"1 Giant Leap - x\n3 Doors Down - y\n7 Years - z",
                             "2 Unlimited - x\n3 Doors Down - y\n4 Non Blondes - z",
                             "1 Giant Leap - x\n2 Unlimited - y\nABBA - z"})
        EXPECT_EQ(shownSongs(list).first(),
                  text("1 ") + text(list).first(text(list).indexOf(u'-')) + text("| x"));
    EXPECT_EQ(shownSongs("ABBA - SOS\nTitel – Interpret\nSOS - ABBA\n\"SOS\" - ABBA"),
              QStringList({text("1 ABBA | SOS"), text("3 ABBA | SOS"), text("4 ABBA | SOS")}));
}

TEST(SongList, ReadsTheTablesThatPeopleExport) {
    const struct {
        const char* table;
        QStringList songs;
    } cases[] = {
        {"\"Track URI\",\"Track Name\",\"Album Artist Name(s)\",\"Artist Name(s)\",\"Tempo\","
         "\"Duration (ms)\"\n"
         "\"spotify:track:1\",\"Hello, Goodbye\",\"X\",\"The Beatles\",\"120\",\"207000\"\n"
         "\"spotify:track:2\",\"Get Lucky\",\"X\",\"Daft Punk,Pharrell Williams\",\"116\",\"\"\n",
         {text("2 The Beatles | Hello, Goodbye | 3:27"),
          text("3 Daft Punk, Pharrell Williams | Get Lucky")}},
        {"sep=;\nTitle;Artist;Time\n\"12\"\" Mix\";\"10,000 Maniacs\";0:03:45\n",
         {text("3 10,000 Maniacs | 12\" Mix | 3:45")}},
        {"Titel;Interpret;Dauer\r\n„Schön“;Die Ärzte;4:10\r\n\r\nTitel;Interpret;Dauer\r\nMännchen"
         ";Grönemeyer;2 min 5\r\n",
         {text("2 Die Ärzte | Schön | 4:10"), text("5 Grönemeyer | Männchen | 2:05")}},
        {"Name\tArtist\tAlbum\tTime\rSOS\tABBA\tABBA\t202\rFernando\tABBA\tx\t254000\rOne\tU2\tx\t7"
         "\r",
         {text("2 ABBA | SOS | 3:22"), text("3 ABBA | Fernando | 4:14"), text("4 U2 | One")}},
        {"\"Artist\",\"Title\",\"Length\"\n\"AC/DC\",\"Two\nlines\",\"3:30\"\n\"a-ha\",\"Take on "
         "Me\",\"PT3M45S\"",
         {text("2 AC/DC | Two lines | 3:30"), text("4 a-ha | Take on Me | 3:45")}},
        {"Исполнитель;Название;Длительность\nКино;Пачка сигарет;4:28",
         {text("2 Кино | Пачка сигарет | 4:28")}},
        {"曲名,アーティスト\nLemon,米津玄師", {text("2 米津玄師 | Lemon")}},
        {"Artist,Title\n\"Weird Al\" Yankovic,\"Eat It\"",
         {text("2 \"Weird Al\" Yankovic | Eat It")}},
        {"#,Track,Title,artist_name\n1,7,SOS,ABBA", {text("2 ABBA | SOS")}},
        {"Song;Notes\nABBA - SOS;loud\nDinner;", {text("2 ABBA | SOS")}},
    };
    for (const auto& [table, songs] : cases)
        EXPECT_EQ(shownSongs(table), songs) << table;
    EXPECT_EQ(shownSongs("Song, Title\nABBA - SOS, live"), QStringList(text("2 ABBA | SOS, live")));
    EXPECT_TRUE(readSongList(text("sep=;\nTitle;Artist\nSOS;ABBA")).unread.isEmpty());
}

TEST(SongList, ATablesRowsSayWhatTheyLack) {
    const SongList list = readSongList(
        text("Wedding list\nTitle,Artist,Time\nMacarena,,3:50\n,ABBA,\nSOS,ABBA,2:22:00\n,,\n"));
    ASSERT_EQ(list.songs.size(), 1);
    EXPECT_EQ(shown(list.songs.first().song), text("ABBA | SOS"));
    QStringList unread;
    for (const LineNote& note : list.unread)
        unread.append(QStringLiteral("%1 %2: %3").arg(note.line).arg(note.text, note.note));
    EXPECT_EQ(unread,
              QStringList({text("1 Wedding list: above the table"),
                           text("3 Macarena | 3:50: no artist"), text("4 ABBA: no title")}));
    ASSERT_EQ(list.remarks.size(), 1);
    EXPECT_EQ(list.remarks.first().note, text("\"2:22:00\" is no song's length and is left out"));
}

TEST(SongList, AQuoteThatIsNeverClosedTakesNothingWithIt) {
    QByteArray table("Title,Artist\n\"Unclosed,ABBA\n");
    for (int i = 0; i < 200; ++i)
        table += "Song,Somebody of a long name\n";
    table += "Blue Monday 12\",New Order\n";
    EXPECT_EQ(readSongList(QString::fromUtf8(table)).songs.size(), 202);
}

TEST(SongList, EndlessListsAreNotRead) {
    const QString line = QStringLiteral("ABBA - Waterloo\n");
    EXPECT_EQ(readSongList(line.repeated(mostListLines) + text("\n\n \n")).songs.size(),
              mostListLines);
    const SongList list = readSongList(line.repeated(100'000));
    EXPECT_TRUE(list.isTooLong);
    EXPECT_TRUE(list.songs.isEmpty());
    const QString longTitle = text("x").repeated(201);
    EXPECT_TRUE(readSongList(text("Title,Artist\n") + longTitle + text(",ABBA")).songs.isEmpty());
}

}  // namespace
}  // namespace reelcrate
