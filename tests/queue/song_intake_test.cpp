#include "queue/song_intake.h"

#include "queue/list_text.h"
#include "queue/queue_store.h"
#include "support/texts.h"

#include <QStringEncoder>
#include <QTemporaryDir>

namespace reelcrate {
namespace {

QString referenceOf(const char* artist, const char* title) {
    return songReference({text(artist), text(title)});
}

TEST(SongReference, IsTheSameHoweverANameIsWritten) {
    EXPECT_EQ(referenceOf("ABBA", "Dancing Queen"), text("song:abba/dancing-queen"));
    EXPECT_EQ(referenceOf("abba", " Dancing  queen!"), referenceOf("ABBA", "Dancing Queen"));
    EXPECT_EQ(referenceOf("Beyonce", "Deja Vu"), referenceOf("Beyoncé", "Déjà Vu"));
    EXPECT_EQ(referenceOf("Άλφα", "x"), referenceOf("Αλφα", "x"));
    EXPECT_EQ(referenceOf("Guns N' Roses", "x"), referenceOf("Guns N’ Roses", "X"));
    EXPECT_EQ(referenceOf("x", "Dont Stop"), referenceOf("x", "Don't Stop"));
    EXPECT_NE(referenceOf("Ed Sheeran", "Tour +"), referenceOf("Ed Sheeran", "Tour"));
    // Other songs, and names without letters.
    const QStringList references{
        referenceOf("ABBA", "Dancing"), referenceOf("ABBA Dancing", ""), referenceOf("!!!", "#1"),
        referenceOf("!!!", "#2"),       referenceOf("!!", "#1"),         referenceOf("мой", "x"),
        referenceOf("мои", "x"),        referenceOf("か", "x"),          referenceOf("が", "x"),
        referenceOf("Ed Sheeran", "÷"), referenceOf("Ed Sheeran", "+"),  referenceOf("C", "x"),
    };
    QStringList different = references;
    different.removeDuplicates();
    EXPECT_EQ(different, references);
}

TEST(SongIntake, AddsEachSongOnceAndSaysWhatItLeavesOut) {
    QueueStore queue;
    const auto taken = [&](const char* list, const char* remark = "") {
        SongIntake intake =
            newRowsForSongs(readSongList(text(list)), text("list.txt"), text(remark), queue);
        queue.append(intake.rows);
        return intake;
    };
    const SongIntake first =
        taken("ABBA - SOS (3:22)\nhello\nabba – sos\nSOS by Abba\n", "As it is.");
    ASSERT_EQ(first.rows.size(), 1);
    const DownloadItem& row = first.rows.first();
    EXPECT_EQ(row.source, SourceType::song);
    EXPECT_EQ(row.title, text("ABBA - SOS"));
    EXPECT_EQ(row.duration, text("3:22"));
    EXPECT_EQ(row.reading, LinkReading::song);
    EXPECT_FALSE(row.isResolvingInfo);
    EXPECT_EQ(first.summary,
              text("Added 1 song; 2 named before; 1 line not read as a song (see the log)"));
    EXPECT_EQ(first.account,
              text("list.txt: Added 1 song; 2 named before; 1 line not read as a song"
                   "\nAs it is."
                   "\nNo song, line 2: hello (no dash or \"by\" between an artist and a title)"
                   "\nOnce only, line 3: abba - sos (as in line 1)"
                   "\nOnce only, line 4: Abba - SOS (as in line 1)"));

    const SongIntake again = taken("SOS by Abba");
    EXPECT_TRUE(again.rows.isEmpty());
    EXPECT_EQ(again.summary, text("No new songs added; 1 named before"));
    EXPECT_TRUE(again.account.endsWith(text("line 1: Abba - SOS (in the queue already)")));
    EXPECT_TRUE(taken("a\nb").summary.startsWith(
        text("list.txt names no songs; 2 lines not read as songs")));
}

TEST(SongIntake, ALongListOfOtherThingsFillsNoLog) {
    const QueueStore queue;
    const SongList list = readSongList(text("nothing\n").repeated(1000));
    const SongIntake intake = newRowsForSongs(list, text("x"), {}, queue);
    EXPECT_EQ(intake.account.count(u'\n'), 201);
    EXPECT_TRUE(intake.account.endsWith(text("No song, 800 more lines")));
    const SongIntake refused =
        newRowsForSongs(readSongList(text("a - b\n").repeated(100'000)), text("x"), {}, queue);
    EXPECT_TRUE(refused.isRefused);
    EXPECT_EQ(refused.summary, text("x has more than 5000 lines, which no list of songs has."));
}

TEST(ListText, ReadsTheEncodingsOfSpreadsheets) {
    const QString table = text("Künstler – „x“\r\n");
    for (const auto encoding : {QStringConverter::Utf8, QStringConverter::Utf16LE,
                                QStringConverter::Utf16BE, QStringConverter::Utf32LE}) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        const QByteArray bytes = encoder(table);
        const ListText list = textOfList(bytes);
        EXPECT_EQ(list.text, table) << QStringConverter::nameForEncoding(encoding);
        EXPECT_EQ(list.remark, QString());
    }
    EXPECT_EQ(textOfList(table.toUtf8()).text, table);
    const ListText western = textOfList(QByteArray("K\xFCnstler \x96 \x84x\x93\r\n"));
    EXPECT_EQ(western.text, table);
    EXPECT_TRUE(western.remark.contains(text("Windows-1252")));
    // Half a character spoils its own line only.
    EXPECT_EQ(textOfList(QString(QChar(0xD83C)) + text(" ABBA - SOS")).text,
              text("\uFFFD ABBA - SOS"));
}

TEST(ListText, SaysWhyAFileIsNoList) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("list"));
    const auto failureOf = [&](const QByteArray& bytes) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        return textOfListFile(path).failure.section(u':', 0, 0);
    };
    EXPECT_EQ(failureOf("ABBA - SOS"), QString());
    EXPECT_EQ(failureOf("\x02" + QByteArray("ABBA - SOS\n").repeated(9)), QString());
    EXPECT_EQ(failureOf(""), text("is empty."));
    EXPECT_EQ(failureOf("\xEF\xBB\xBF \r\n"), text("is empty."));
    EXPECT_EQ(failureOf("\xFF\xD8\xFF\xE0 picture"), QString());
    EXPECT_EQ(failureOf(QByteArray("PK\x03\x04\x14\x00\x06", 7)), text("is no text"));
    EXPECT_EQ(failureOf("\x01\x02\x03 with letters"), text("is no text"));
    EXPECT_EQ(failureOf("%PDF-1.7\nABBA"), text("is no text"));
    EXPECT_EQ(failureOf("{\\rtf1 ABBA"), text("is no text"));
    EXPECT_EQ(failureOf(QByteArray("ABBA - SOS\n").repeated(100'000)),
              text("is larger than 1 MB, which no list of songs is."));
    EXPECT_EQ(textOfListFile(folder.path()).failure, text("is no file."));
    EXPECT_EQ(textOfListFile(path + u'x').failure,
              text("cannot be read: No such file or directory"));
}

}  // namespace
}  // namespace reelcrate
