#include "resolve/media_probe_output.h"

#include "support/argument_printer.h"
#include "support/sample.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

/// The fields that are read from the output, for a link "LINK", with bars between them.
QString fields(const QString& output) {
    const std::optional<MediaInfo> info = mediaInfoFromOutput(output, text("LINK"));
    if (!info)
        return {};
    return QStringList({info->title, info->duration, info->thumbnailURL, info->resolvedURL})
        .join(u'|');
}

TEST(MediaInfoOutput, IsReadLineByLine) {
    expectTexts(fields, {{"Song\n3:45\nhttp://i.x/t\nhttps://p.x/1\n",
                          "Song|3:45|http://i.x/t|https://p.x/1"},
                         {"\n Song \n\n3:45\r\n\u0085http://i.x/t\nhttps://p.x/1",
                          "Song|3:45|http://i.x/t|https://p.x/1"},
                         {"Song\nNA\nNA\nhttps://p.x/1.mp3\n", "Song|||https://p.x/1.mp3"},
                         {"Song\n3:45\nNA\nNA\n", "Song|3:45||LINK"},
                         {"Song", "Song|||LINK"},
                         {"", ""},
                         {" \n\t\r\n\u2029", ""}});
}

TEST(MediaInfoOutput, NoOtherAddressThanAWebAddressIsTaken) {
    for (const char* page : {"file:///etc/passwd", "wistia:abc", "--exec=harm", "-o",
                             "https://p.x/1 --exec=harm", "https://", "see https://p.x/1"})
        EXPECT_EQ(fields(text("Song\n45\nhttp://i.x/t\n") + text(page)),
                  text("Song|45|http://i.x/t|LINK"))
            << page;
}

TEST(MediaInfoOutput, FieldsAreToldByTheirFormBelowATitleWithLineBreaks) {
    expectTexts(
        fields,
        {{"One\nTwo\n\nThree\n1:02:03\nhttp://i.x/t\nhttps://p.x/1\n",
          "One Two Three|1:02:03|http://i.x/t|https://p.x/1"},
         {"One\u2028Two\n45\nNA\nHTTPS://p.x/1\n", "One Two|45||HTTPS://p.x/1"},
         {"One\nhttps://evil.x/\n-x\n3:45\nhttp://i.x/t\nhttps://p.x/1\n",
          "One https://evil.x/ -x|3:45|http://i.x/t|https://p.x/1"},
         // A page with several media prints the block once for each.
         {"A\n1:00\nNA\nhttps://p.x/a\nB\n2:00\nNA\nhttps://p.x/b\n", "A|1:00||https://p.x/a"},
         // The first line is always the title's.
         {"3:45\nhttp://i.x/t\nhttps://p.x/1\n", "3:45|http://i.x/t|https://p.x/1|LINK"}});
}

TEST(RecordedProbe, IsRead) {
    EXPECT_EQ(fields(sample("yt-dlp_probe.txt")),
              text("Caf\u00E9 Del Mar||http://127.0.0.1:8000/cover/cafe-del-mar.jpg|"
                   "http://127.0.0.1:8000/song/cafe-del-mar"));

    const QList<PlaylistEntry> read = playlistEntriesFromOutput(sample("yt-dlp_playlist.json"));
    ASSERT_EQ(read.size(), 4);
    EXPECT_TRUE(read.at(2).url.startsWith(u"http://127.0.0.1:8000/song/cafe-del-mar#"));
    EXPECT_EQ(read.at(2).title, text("Caf\u00E9 Del Mar"));
    EXPECT_EQ(read.at(2).duration, text("0:08"));
    EXPECT_EQ(read.at(2).thumbnailURL, text("http://127.0.0.1:8000/cover/cafe-del-mar.jpg"));
}

TEST(PlaylistOutput, BuildsTheAddressFromWhatThereIs) {
    const auto address = [](const QString& given) {
        const QString json = text(R"({"entries": [{"title": "T", )") + given + text("}]}");
        return playlistEntriesFromOutput(json).value(0).url;
    };
    expectTexts(
        address,
        {{R"("id": "abc", "url": "abc")", "https://www.youtube.com/watch?v=abc"},
         {R"("id": "abc", "url": "https://u.x/")", "https://u.x/"},
         {R"("id": "abc", "webpage_url": "http://w.x/", "url": "https://u.x/")", "http://w.x/"},
         {R"("webpage_url": "", "url": "wistia:x")", "https://www.youtube.com/watch?v=wistia:x"},
         {R"("url": "file:///etc/x")", "https://www.youtube.com/watch?v=file:///etc/x"},
         {R"("id": "--exec=x", "url": "-o")", "https://www.youtube.com/watch?v=--exec=x"},
         {R"("id": 42)", "https://www.youtube.com/watch?v=42"},
         {R"("id": null)", ""}});
}

TEST(PlaylistOutput, KeepsOrderAndDoubles) {
    const QList<PlaylistEntry> read = playlistEntriesFromOutput(text(R"({"entries": [
        {"id": "b", "title": " B ", "duration": 61.5, "thumbnails": [{"url": "t1"}, {"url": "t2"}]},
        {"id": "a", "title": "A", "duration": null}, {"id": "no title"},
        {"id": "b", "title": "\ud83c\udfb5"}]})"));
    ASSERT_EQ(read.size(), 3);
    const PlaylistEntry first{text("https://www.youtube.com/watch?v=b"), SourceType::youtube,
                              text("B"), text("1:02"), text("t2")};
    EXPECT_EQ(read.at(0), first);
    EXPECT_EQ(read.at(1).duration, QString());
    EXPECT_EQ(read.at(2).title, text("\U0001F3B5"));
}

TEST(PlaylistOutput, IsAllOrNothing) {
    for (const char* output :
         {"", "null", "[]", R"({"id": "abc", "title": "A single video"})", R"({"entries": {}})",
          R"({"entries": [{"id": "a", "title": "A"}, null]})",
          R"({"entries": [{"id": "a", "title": "A"}]} trailing)"})
        EXPECT_TRUE(playlistEntriesFromOutput(text(output)).isEmpty()) << output;
}

TEST(MediaProbeCommand, HandsEveryLinkOverUnchanged) {
    ArgumentPrinter tool(text("yt dlp's"));
    const QStringList infoWords =
        text(
            "--no-update --skip-download --no-warnings --no-playlist --print %(title)s --print "
            "%(duration_string)s --print %(thumbnail)s --print %(webpage_url)s --")
            .split(u' ');
    const QStringList playlistWords =
        text("--no-update --flat-playlist --dump-single-json --no-warnings --yes-playlist --")
            .split(u' ');
    for (const QString& link : hostileTexts) {
        SCOPED_TRACE(link.toStdString());
        EXPECT_EQ(tool.run(mediaInfoCommand(tool.path(), link)).arguments,
                  infoWords + QStringList(link));
        EXPECT_EQ(tool.leftBehind, QStringList());
        EXPECT_EQ(tool.run(playlistCommand(tool.path(), link)).arguments,
                  playlistWords + QStringList(link));
        EXPECT_EQ(tool.leftBehind, QStringList());
    }
}

}  // namespace
}  // namespace reelcrate
