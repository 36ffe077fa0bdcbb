#include "download/output_reader.h"

#include "support/sample.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

/// What the reader has noticed, in a word each.
QString noticed(const OutputReader& reader) {
    QStringList words;
    if (reader.mentionsLogin())
        words.append(text("login"));
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
        {text("ERROR: This video is PRIVATE\n"), "login"},
        {text("ERROR: use --cookies to Login\n"), "login"},
        {text("RCR_PROGRESS: 1%\nlog in, privateer"), "login"},
        {text("RCR_PROGRESS: 1%\nlog in, priv ate\n"), ""},
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

TEST(OutputReader, ForgetsEndlessLines) {
    OutputReader reader;
    for (int i = 0; i < 3; ++i)
        reader.read(QString(100'000, u'x'));
    reader.read(text("\n[ExtractAudio] x\nERROR: no\n"));
    EXPECT_EQ(noticed(reader), text("conversion"));
}

}  // namespace
}  // namespace reelcrate
