#include "download/download_command.h"
#include "download/edge_trim.h"
#include "library/file_names.h"
#include "resolve/media_probe_output.h"
#include "resolve/spotify_songs.h"
#include "support/argument_printer.h"
#include "support/machine.h"
#include "support/rows.h"
#include "support/texts.h"

#include <QFileInfo>

namespace reelcrate {
namespace {

using Texts = std::array<QString, 5>;

/// A command line made of any texts, and the words that they are to become.
struct Command {
    const char* name;
    QString (*line)(const Texts& texts);
    QStringList (*words)(const Texts& texts);
};

QString searchPath(const QString& first) {
    return first + u':' + qEnvironmentVariable("PATH");
}

/// The output folder is refused where it holds a variable.
QString folder(const Texts& texts) {
    return eventFolderPath(u'/' + QString(texts[0]).remove(u'$'), texts[1], text("Today"));
}

template <SourceType source, DownloadMode mode>
QString download(const Texts& texts) {
    return downloadCommand(makeRow(source, texts[2], texts[3]), folder(texts), mode,
                           {text("tool"), u'/' + texts[4] + text("/ffmpeg"), texts[4]});
}

QStringList downloadWords(const Texts& texts, const QString& file, const QString& target) {
    return {searchPath(texts[4]), QFileInfo(u'/' + texts[4] + text("/ffmpeg")).path(),
            folder(texts).replace(u'%', text("%%")) + u'/' + file, target};
}

QStringList linkWords(const Texts& texts) {
    return downloadWords(texts, text("%(title).180B [%(id).40B].%(ext)s"), texts[3]);
}

template <DownloadMode mode>
QStringList songWords(const Texts& texts) {
    const DownloadItem row = makeRow(SourceType::spotify, texts[2], texts[3]);
    return downloadWords(texts, spotifyFileStem(texts[2]) + text(" [%(id)s].%(ext)s"),
                         spotifySearchQuery(row, mode));
}

const Command commands[] = {
    {"song from a link", download<SourceType::link, DownloadMode::audio>, linkWords},
    {"video from a link", download<SourceType::link, DownloadMode::video>, linkWords},
    {"Spotify song", download<SourceType::spotify, DownloadMode::audio>,
     songWords<DownloadMode::audio>},
    {"Spotify video", download<SourceType::spotify, DownloadMode::video>,
     songWords<DownloadMode::video>},
    {"probe",
     [](const Texts& texts) {
         return mediaInfoCommand({text("tool"), texts[1]}, texts[0]);
     },
     [](const Texts& texts) {
         return QStringList{searchPath(texts[1]), texts[0]};
     }},
    {"playlist",
     [](const Texts& texts) {
         return playlistCommand({text("tool"), texts[1]}, texts[0]);
     },
     [](const Texts& texts) {
         return QStringList{searchPath(texts[1]), texts[0]};
     }},
    {"Spotify list",
     [](const Texts& texts) { return spotifyListCommand(texts[0], text("tool"), texts[1]); },
     [](const Texts& texts) {
         return QStringList{searchPath(texts[0]), texts[1]};
     }},
    {"trim",
     [](const Texts& texts) {
         return edgeTrimCommand(text("tool"), texts[0], {TrimPlan::Kind::cut, 1, 2}, texts[1]);
     },
     [](const Texts& texts) {
         return QStringList{texts[0], texts[1]};
     }},
};

/// What is left of a text when it is an argument: no NUL, and no halves of characters.
QString asArgument(QString text) {
    return QString::fromUtf8(text.remove(QChar(u'\0')).toUtf8());
}

/// The words that each line calls `tool` with, the search path first. All in one shell, where the
/// tool is a function: programs take their time to start.
QList<QStringList> calls(const QStringList& lines) {
    const QTemporaryDir folder;
    const QTemporaryDir working;
    const QString file = folder.filePath(text("lines"));
    EXPECT_TRUE(writeFile(file, "tool() { printf '%s\\0' \"$#\" \"$PATH\" \"$@\"; }\n" +
                                    lines.join(u'\n').toUtf8() + '\n'));
    QProcess shell;
    shell.setWorkingDirectory(working.path());
    shell.start(text("/bin/bash"), {file});
    EXPECT_TRUE(shell.waitForFinished(100'000));
    EXPECT_EQ(shell.readAllStandardError(), QByteArray());
    EXPECT_TRUE(QDir(working.path()).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot));

    QList<QStringList> calls;
    const QList<QByteArray> printed = shell.readAllStandardOutput().split('\0');
    for (auto word = printed.begin(); word + 1 < printed.end();) {
        const qsizetype left = printed.end() - word - 2;  // the empty end is none
        const qsizetype count = std::min<qsizetype>((word++)->toLongLong() + 1, left);
        QStringList& words = calls.emplaceBack();
        for (qsizetype i = 0; i < count; ++i)
            words.append(QString::fromUtf8(*word++));
    }
    return calls;
}

TEST(RandomCommands, KeepEachTextInItsWord) {
    constexpr int rounds = 2'500;
    std::mt19937 random(20'261'123);
    for (const Command& command : commands) {
        SCOPED_TRACE(command.name);
        // The first line shows where the texts stand.
        QList<Texts> texts{{text("AA"), text("BB"), text("CC"), text("DD"), text("EE")}};
        QStringList lines;
        for (int i = 0; i <= rounds; ++i) {
            lines.append(command.line(texts.last()));
            for (QString& each : texts.emplaceBack())
                each = randomText(random);
        }
        const QList<QStringList> called = calls(lines);
        ASSERT_EQ(called.size(), lines.size());
        const QStringList plain = command.words(texts.first());
        for (qsizetype i = 0; i < lines.size(); ++i) {
            QStringList expected = called.first();
            const QStringList words = command.words(texts.at(i));
            for (qsizetype word = 0; word < plain.size(); ++word) {
                ASSERT_TRUE(called.first().contains(plain.at(word)));
                for (qsizetype at = 0; at < expected.size(); ++at) {
                    if (called.first().at(at) == plain.at(word))
                        expected[at] = asArgument(words.at(word));
                }
            }
            ASSERT_EQ(called.at(i), expected) << lines.at(i).toStdString();
        }
    }
}

TEST(RandomCommands, HaveAToolOfAnyName) {
    std::mt19937 random(20'261'123);
    for (int i = 0; i < 20; ++i) {
        const QString name = randomText(random).remove(QChar(u'\0')).replace(u'/', u'-');
        SCOPED_TRACE(name.toStdString());
        ArgumentPrinter tool(name + u't');
        EXPECT_EQ(
            tool.run(mediaInfoCommand({tool.path(), text("/opt")}, text("LINK"))).arguments.mid(8),
            QStringList({text("--"), text("LINK")}));
        EXPECT_EQ(tool.leftBehind, QStringList());
    }
}

}  // namespace
}  // namespace reelcrate
