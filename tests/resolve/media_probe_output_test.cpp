#include "resolve/media_probe_output.h"

#include "support/argument_printer.h"
#include "support/sample.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

/// The fields that are read from the output, with bars between them; media on lines of their own.
QString fields(const QString& output) {
    QStringList lines;
    const ProbedMedia found = mediaFromOutput(output);
    for (const MediaInfo& info : found.media)
        lines.append(QStringList({info.title, info.duration, info.thumbnailURL, info.resolvedURL,
                                  QString::number(info.playlistIndex)})
                         .join(u'|'));
    const QString ofSite =
        found.onSite > found.counted ? text(" of %1").arg(found.onSite) : QString();
    return QString::number(found.counted) + ofSite + u'\n' + lines.join(u'\n');
}

TEST(MediaInfoOutput, IsReadFromItsOwnLinesAlone) {
    expectTexts(
        fields,
        {{R"(RCR_MEDIA:{"title": "Song", "duration_string": "3:45", "duration": 225,
)",
          "0\n"},
         {"Welcome\n"
          R"(RCR_MEDIA:{"title": "Song", "duration_string": "3:45", "thumbnail": "http://i.x/t", )"
          R"("webpage_url": "https://p.x/1"})"
          "\nBye",
          "1\nSong|3:45|http://i.x/t|https://p.x/1|0"},
         {R"(RCR_MEDIA:{"title": " One\n\u2028Two ", "duration": 59.5, "webpage_url": null})",
          "1\nOne Two|1:00|||0"},
         {"A title that says\r\nRCR_MEDIA: and no more\nRCR_MEDIA:[]\nRCR_MEDIA:{}", "1\n||||0"},
         {"RCR_MEDIA:{\"title\": \"A\", \"playlist_index\": 1, \"n_entries\": 3}\n"
          "RCR_MEDIA:{\"title\": \"C\", \"n_entries\": 3, \"playlist_count\": 9}\n",
          "3 of 9\nA||||1\nC||||0"},
         {"", "0\n"}});
}

TEST(MediaInfoOutput, NoOtherAddressThanAWebAddressIsTaken) {
    const auto page = [](const QString& address) {
        const QString line = text(R"(RCR_MEDIA:{"title": "T", "webpage_url": "%1"})").arg(address);
        return mediaFromOutput(line).media.value(0).resolvedURL;
    };
    expectTexts(page, {{"https://p.x/1", "https://p.x/1"},
                       {"HTTP://p.x", "HTTP://p.x"},
                       {"file:///etc/passwd", ""},
                       {"wistia:abc", ""},
                       {"--exec=harm", ""},
                       {"https://p.x/1 --exec=harm", ""},
                       {"https://", ""},
                       {"NA", ""},
                       {"see https://p.x/1", ""}});
}

TEST(RecordedProbe, IsRead) {
    EXPECT_EQ(fields(sample("yt-dlp_probe.txt")),
              text("1\nCaf\u00E9 Del Mar||http://127.0.0.1:8000/cover/cafe-del-mar.jpg|"
                   "http://127.0.0.1:8000/song/cafe-del-mar|0"));

    const Listing read =
        listingFromOutput(sample("yt-dlp_playlist.json"), text("LINK"), SourceType::youtube);
    ASSERT_EQ(read.entries.size(), 4);
    EXPECT_TRUE(read.entries.at(2).url.startsWith(u"http://127.0.0.1:8000/song/cafe-del-mar#"));
    EXPECT_EQ(read.entries.at(2).title, text("Caf\u00E9 Del Mar"));
    EXPECT_EQ(read.entries.at(2).duration, text("0:08"));
    EXPECT_EQ(read.entries.at(2).thumbnailURL,
              text("http://127.0.0.1:8000/cover/cafe-del-mar.jpg"));
    EXPECT_EQ(read.cut, std::nullopt);
}

TEST(PlaylistOutput, BuildsTheAddressFromWhatThereIs) {
    const auto addressAt = [](SourceType source) {
        return [source](const QString& given) {
            const QString json = text(R"({"entries": [{"title": "T", )") + given + text("}]}");
            const PlaylistEntry entry =
                listingFromOutput(json, text("LINK"), source).entries.value(0);
            return entry.url + (entry.playlistItem > 0 ? text(" 1") : QString());
        };
    };
    expectTexts(
        addressAt(SourceType::youtube),
        {{R"("id": "abc", "url": "abc")", "https://www.youtube.com/watch?v=abc"},
         {R"("id": "abc", "url": "https://u.x/")", "https://u.x/"},
         {R"("id": "abc", "webpage_url": "http://w.x/", "url": "https://u.x/")", "http://w.x/"},
         {R"("webpage_url": "", "url": "wistia:x")", "https://www.youtube.com/watch?v=wistia:x"},
         {R"("url": "file:///etc/x")", "https://www.youtube.com/watch?v=file:///etc/x"},
         {R"("id": "--exec=x", "url": "-o")", "https://www.youtube.com/watch?v=--exec=x"},
         {R"("id": 42)", "https://www.youtube.com/watch?v=42"},
         {R"("id": null)", ""}});
    // Elsewhere it is the page's own item.
    expectTexts(addressAt(SourceType::link), {{R"("id": "abc", "url": "wistia:x")", "LINK 1"},
                                              {R"("url": "https://u.x/")", "https://u.x/"},
                                              {R"("id": null)", "LINK 1"}});
}

TEST(PlaylistOutput, KeepsOrderAndDoublesAndWhatHasStillToBeRead) {
    const QString output = text(
        "Welcome\n"
        R"({"entries": [{"id": "b", "title": " B ", "duration": 61.5, "thumbnails": )"
        R"([{"url": "t1"}, {"url": "t2"}]}, {"id": "a", "title": "A", "duration": null}, )"
        R"({"id": "no-title"}, null, {"id": "b", "title": "\ud83c\udfb5"}, )"
        R"({"url": "https://y.x/playlist?list=l", "title": "L"}], "playlist_count": 206})"
        "\nBye\n");
    const Listing read = listingFromOutput(output, text("LINK"), SourceType::youtube);
    ASSERT_EQ(read.entries.size(), 5);
    const PlaylistEntry first{text("https://www.youtube.com/watch?v=b"), SourceType::youtube,
                              text("B"), text("1:02"), text("t2")};
    EXPECT_EQ(read.entries.at(0), first);
    EXPECT_EQ(read.entries.at(1).duration, QString());
    EXPECT_FALSE(read.entries.at(2).isRead);
    EXPECT_EQ(read.entries.at(3).title, text("\U0001F3B5"));
    EXPECT_FALSE(read.entries.at(4).isRead) << "a list of songs";
    EXPECT_EQ(read.cut, (CutListing{5, 206}));
}

TEST(PlaylistOutput, ThatIsNoListIsNone) {
    for (const char* output :
         {"", "null", "[]", R"({"id": "abc", "title": "A single video"})", R"({"entries": {}})",
          R"({"entries": [null, null]})", R"({"entries": [{"id": "a", "title": "A"}]} trailing)"}) {
        const Listing read = listingFromOutput(text(output), text("LINK"), SourceType::youtube);
        EXPECT_TRUE(read.entries.isEmpty()) << output;
        EXPECT_EQ(read.cut, std::nullopt) << output;
    }
}

TEST(MediaProbeCommand, AsksForWhatIsRead) {
    ArgumentPrinter printer(text("yt dlp's"));
    const ProbeTool tool{printer.path(), text("/opt/a b")};
    const QStringList infoWords =
        text(
            "--no-update --skip-download --no-warnings --no-playlist --no-download-archive "
            "--no-exec --print "
            "RCR_MEDIA:%(.{title,duration_string,duration,thumbnail,webpage_url,playlist_index,"
            "n_entries,playlist_count})j")
            .split(u' ');
    const QStringList playlistWords =
        text(
            "--no-update --flat-playlist --dump-single-json --no-warnings --yes-playlist "
            "--no-download-archive --no-exec --")
            .split(u' ');
    const QString link = text("https://p.x/a b");
    const Invocation all = printer.run(mediaInfoCommand(tool, link));
    EXPECT_EQ(all.arguments, infoWords + QStringList({text("--"), link}));
    EXPECT_TRUE(all.searchPath.startsWith(u"/opt/a b:"));
    EXPECT_EQ(printer.run(mediaInfoCommand(tool, link, 12)).arguments,
              infoWords + QStringList({text("--playlist-items"), text("12"), text("--"), link}));
    EXPECT_EQ(printer.run(playlistCommand(tool, link)).arguments,
              playlistWords + QStringList(link));
}

TEST(HitsFromOutput, ReadsWhatTheSiteLists) {
    const QString output = text(R"({"entries": [
        {"id": "abcdefghijk", "url": "https://www.youtube.com/watch?v=abcdefghijk",
         "title": "A \u0416", "channel": "C", "uploader": "U", "duration": 61.0},
        {"id": "abcdefghij2", "title": "B", "uploader": "U", "duration": null},
        {"id": "abcdefghij3", "title": "", "duration": 3},
        {"url": "httpx;touch", "title": "X", "duration": 3}, null, 7]})");
    EXPECT_EQ(hitsFromOutput(output),
              (QList<SearchHit>{{text("https://www.youtube.com/watch?v=abcdefghijk"), text("A Ж"),
                                 text("C"), 61.0},
                                {text("https://www.youtube.com/watch?v=abcdefghij2"), text("B"),
                                 text("U"), std::nullopt}}));
    EXPECT_TRUE(hitsFromOutput(text("null")).isEmpty());
}

}  // namespace
}  // namespace reelcrate
