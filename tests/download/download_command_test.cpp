#include "download/download_command.h"

#include "support/argument_printer.h"
#include "support/rows.h"
#include "support/texts.h"

#include <QRegularExpression>

namespace reelcrate {
namespace {

const QString folder = QStringLiteral("/music/Event");

class DownloadCommand : public testing::Test {
protected:
    /// What the tool is called with, quotes around arguments with a blank in them.
    QString arguments(DownloadMode mode) {
        QStringList words = tool.run(downloadCommand(video, folder, mode, tools)).arguments;
        words.replaceInStrings(QRegularExpression(text("^(.* .*)$")), text("'\\1'"));
        return words.join(u' ');
    }

    /// The output path and the target.
    QStringList lastTwo(const DownloadItem& row, const QString& eventFolder = folder) {
        const QString line = downloadCommand(row, eventFolder, DownloadMode::audio, tools);
        return tool.run(line).arguments.mid(38);
    }

    ArgumentPrinter tool{QStringLiteral("yt-dlp")};
    const DownloadTools tools{tool.path(), QStringLiteral("/opt/my tools/ffmpeg"),
                              QStringLiteral("/opt")};
    const DownloadItem video =
        makeRow(SourceType::youtube, text("Unused"), text("https://youtu.be/x?a=1&b"));
    const DownloadItem song = makeRow(SourceType::spotify, text("AC/DC: Back in Black?"));
};

TEST_F(DownloadCommand, AsksForAnMP3OrAnMP4) {
    const QString progress = text(
        "--no-update --newline --no-colors --progress --progress-delta 0.2 "
        "--progress-template download:RCR_PROGRESS:%(progress._percent_str)s --no-simulate "
        "--no-quiet --no-download-archive --no-exec --match-filters !is_live --use-postprocessor "
        "'Exec:exec_cmd=ln -f %(filepath)q %(filepath)q.fetched 2>/dev/null || "
        "cp %(filepath)q %(filepath)q.fetched || rm -f %(filepath)q.fetched || :' "
        "--no-abort-on-error "
        "--part --abort-on-unavailable-fragments --keep-fragments");
    EXPECT_EQ(arguments(DownloadMode::audio),
              progress + text(" --concurrent-fragments 8 -x --audio-format mp3 --audio-quality 0 "
                              "--embed-thumbnail --add-metadata --postprocessor-args "
                              "ExtractAudio:-xerror --postprocessor-args Metadata:-xerror "
                              "--postprocessor-args EmbedThumbnail+ffmpeg_o:-xerror "
                              "--ffmpeg-location '/opt/my tools' "
                              "-o '/music/Event/%(title).180B [%(id).40B].%(ext)s' "
                              "https://youtu.be/x?a=1&b"));
    EXPECT_EQ(arguments(DownloadMode::video),
              progress + text(" --concurrent-fragments 12 --embed-metadata --ffmpeg-location "
                              "'/opt/my tools' -f bv*+ba/b -S "
                              "res:1080,lang,hdr:sdr,vcodec:h264,acodec:aac,ext:mp4:m4a "
                              "--merge-output-format mp4/mkv "
                              "-o '/music/Event/%(title).180B [%(id).40B].%(ext)s' "
                              "https://youtu.be/x?a=1&b"));
}

TEST_F(DownloadCommand, TakesOneOfSeveralAndWhatItCan) {
    DownloadItem third = video;
    third.playlistItem = 3;
    EXPECT_TRUE(downloadCommand(third, folder, DownloadMode::video, tools)
                    .contains(text(" --playlist-items 3 -o ")));
    const QString lenient =
        downloadCommand(video, folder, DownloadMode::audio, tools, Conversion::lenient);
    EXPECT_FALSE(lenient.contains(u"ExtractAudio:-xerror") || lenient.contains(u"  "));
}

TEST_F(DownloadCommand, SearchesForASpotifySong) {
    EXPECT_EQ(lastTwo(song),
              QStringList({text("/music/Event/AC-DC- Back in Black- [%(id)s].%(ext)s"),
                           text("ytsearch1:AC/DC: Back in Black? official audio")}));
}

TEST_F(DownloadCommand, FindsItsToolOnTheSearchPathAndLeavesTheConverterOut) {
    for (const DownloadMode mode : allDownloadModes) {
        const QString line =
            downloadCommand(video, folder, mode, {std::nullopt, std::nullopt, tool.folder()});
        EXPECT_FALSE(line.contains(u"  ") || line.contains(u"--ffmpeg-location"));
        const Invocation call = tool.run(line);
        EXPECT_EQ(call.searchPath, tool.folder() + u':' + qEnvironmentVariable("PATH"));
        EXPECT_EQ(call.arguments.value(call.arguments.size() - 1), video.url);
    }
}

TEST_F(DownloadCommand, DoublesPercentSignsOfTheFolder) {
    EXPECT_EQ(lastTwo(video, text("/100% it's %(id)s")).value(0),
              text("/100%% it's %%(id)s/%(title).180B [%(id).40B].%(ext)s"));
    EXPECT_EQ(lastTwo(video, text("/")).value(0), text("/%(title).180B [%(id).40B].%(ext)s"));
}

}  // namespace
}  // namespace reelcrate
