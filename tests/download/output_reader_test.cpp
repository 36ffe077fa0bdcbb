#include "download/output_reader.h"

#include "support/sample.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

/// What the reader has noticed, in a word each.
QString noticed(const OutputReader& reader) {
    QStringList words;
    if (reader.foundNothing())
        words.append(text("nothing"));
    if (reader.conversionFailed())
        words.append(text("conversion"));
    if (reader.onlyCoversFailed())
        words.append(text("covers"));
    if (reader.cannotResume())
        words.append(text("resume"));
    return words.join(u' ');
}

TEST(OutputReader, NoticesHowADownloadEndsWhereverItsOutputIsCut) {
    const std::pair<QString, const char*> cases[] = {
        {sample("yt-dlp_mp3.txt"), ""},
        {sample("yt-dlp_mp4.txt"), ""},
        {sample("yt-dlp_again.txt"), ""},
        {sample("yt-dlp_404.txt"), ""},
        {sample("yt-dlp_bad_cover.txt"), "covers"},
        {sample("yt-dlp_damaged.txt"), "conversion"},
        {text("[EmbedThumbnail] x\nERROR: y\n[generic] z\nERROR: HTTP Error 500\n"), ""},
        {text("[ThumbnailsConvertor] Converting\rERROR: Conversion failed!\r"), "covers"},
        {text("[EmbedThumbnail] x\nWARNING: no\n"), ""},
        {text("[Metadata] x\nERROR: Conversion failed!\n"), ""},
        {text("My [ExtractAudio]\nERROR: no\n"), ""},
        {text("[ExtractAudio] x\n ERROR: no\nNo ERROR: no\n"), ""},
        {text("[download] x\nERROR: unable to download video data: HTTP Error 416: Requested\n"),
         "resume"},
        {text("Title: HTTP Error 416\n"), ""},
        {text("[youtube:search] Playlist a: Downloading 0 items\n"), "nothing"},
        {text("[youtube:search] Playlist : Downloading 0 items: Downloading 1 items of 1\n"), ""},
        {text("[download] Destination: x: Downloading 0 items\n"), ""},
    };
    for (const auto& [output, expected] : cases) {
        for (const qsizetype size : {1, 9, 4096}) {
            SCOPED_TRACE(output.left(80).toStdString());
            OutputReader reader;
            for (qsizetype at = 0; at < output.size(); at += size)
                reader.read(output.mid(at, size));
            EXPECT_EQ(noticed(reader), text(expected));
        }
    }
}

TEST(OutputReader, KeepsTheLastComplaintsWhole) {
    OutputReader reader;
    const QString output = text(
        "WARNING: [x] a\n ERROR: no\nERROR: b\nno WARNING: no\n"
        "ERROR: \r[download] Got error: timed out\n[download] no\n");
    for (const QChar c : output)
        reader.read(c);
    EXPECT_EQ(reader.complaints(), QStringList({text("WARNING: [x] a"), text("ERROR: b"),
                                                text("ERROR: [download] Got error: timed out")}));
    for (int i = 0; i < 1'000; ++i)
        reader.read(text("ERROR: %1 ").arg(i) + QString(10'000, u'x') + u'\n');
    EXPECT_TRUE(reader.complaints().last().startsWith(text("ERROR: 999 ")));
    EXPECT_LT(reader.complaints().join(u' ').size(), 100'000);
}

TEST(OutputReader, KnowsTheFormatsOfTheFirst) {
    OutputReader reader;
    reader.read(text("[generic] 1 format(s): 9\n[info] a: Downloading 1 format(s): 137+1"));
    EXPECT_EQ(reader.formats(), QString());
    reader.read(text("40\n[info] b: Downloading 1 format(s): 18\n"));
    EXPECT_EQ(reader.formats(), text("137+140"));
}

TEST(OutputReader, ForgetsEndlessLines) {
    OutputReader reader;
    for (int i = 0; i < 3; ++i)
        reader.read(QString(100'000, u'x'));
    reader.read(text("[ExtractAudio] x\nERROR: no\n"));  // as if a line had begun
    EXPECT_EQ(noticed(reader), text("conversion"));
}

}  // namespace
}  // namespace reelcrate
