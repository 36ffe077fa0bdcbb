#include "download/download_command.h"
#include "support/argument_printer.h"
#include "support/machine.h"
#include "support/rows.h"
#include "support/texts.h"
#include "tools/shell_quote.h"
#include "tools/shell_runner.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace reelcrate {
namespace {

using Fields = QJsonObject;

Fields picture(const char* codec, const char* ext, int height, int rate, int frames = 30) {
    const int width = height * 16 / 9;
    return {{text("vcodec"), text(codec)}, {text("acodec"), text("none")}, {text("ext"), text(ext)},
            {text("height"), height},      {text("width"), width},         {text("tbr"), rate},
            {text("fps"), frames}};
}

Fields sound(const char* codec, const char* ext, int rate) {
    return {{text("vcodec"), text("none")},
            {text("acodec"), text(codec)},
            {text("ext"), text(ext)},
            {text("tbr"), rate},
            {text("abr"), rate}};
}

Fields with(Fields fields, const char* name, const QJsonValue& value) {
    fields.insert(text(name), value);
    return fields;
}

Fields of(const Fields& sound, const char* language, int preference) {
    return with(with(sound, "language", text(language)), "language_preference", preference);
}

/// What the sites offer; the numbers are those of the largest one.
Fields format(const QString& id) {
    const char* aac = "mp4a.40.2";
    const char* hdr = "HDR10";
    const QHash<QString, Fields> formats{
        {text("18"), with(picture("avc1.42001E", "mp4", 360, 500), "acodec", text(aac))},
        {text("22"), with(picture("avc1.64001F", "mp4", 720, 1500), "acodec", text(aac))},
        {text("43"), with(picture("vp8", "webm", 360, 600), "acodec", text("vorbis"))},
        {text("136"), picture("avc1.4d401f", "mp4", 720, 1500)},
        {text("137"), picture("avc1.640028", "mp4", 1080, 3000)},
        {text("137-drm"), with(picture("avc1.640028", "mp4", 1080, 9000), "has_drm", true)},
        {text("299"), picture("avc1.64002a", "mp4", 1080, 5000, 60)},
        {text("247"), picture("vp9", "webm", 720, 1200)},
        {text("248"), picture("vp9", "webm", 1080, 2200)},
        {text("303"), picture("vp9", "webm", 1080, 4500, 60)},
        {text("313"), picture("vp9", "webm", 2160, 11000)},
        {text("335"), with(picture("vp9.2", "webm", 1080, 5000, 60), "dynamic_range", text(hdr))},
        {text("399"), picture("av01.0.08M.08", "mp4", 1080, 1800)},
        {text("401"), picture("av01.0.12M.08", "mp4", 2160, 9000)},
        {text("699"),
         with(picture("av01.0.09M.10", "mp4", 1080, 4000, 60), "dynamic_range", text(hdr))},
        {text("vp8"), picture("vp8", "webm", 480, 900)},
        {text("vorbis"), sound("vorbis", "webm", 128)},
        {text("140"), sound(aac, "m4a", 128)},
        {text("140-de"), of(sound(aac, "m4a", 129), "de", -1)},
        {text("140-en"), of(sound(aac, "m4a", 128), "en", 10)},
        {text("251"), sound("opus", "webm", 140)},
        {text("251-mp4"), sound("opus", "m4a", 160)},
        {text("251-en"), of(sound("opus", "webm", 150), "en", 10)},
        {text("board"),
         with(with(picture("none", "mhtml", 90, 1), "protocol", text("mhtml")), "tbr", {})},
    };
    Fields fields = formats.value(id);
    EXPECT_FALSE(fields.isEmpty()) << id.toStdString();
    fields.insert(text("format_id"), id);
    fields.insert(text("url"), text("http://127.0.0.1/") + id);
    if (!fields.contains(text("protocol")))
        fields.insert(text("protocol"), text("https"));
    return fields;
}

QJsonObject page(const QString& ids) {
    QJsonArray formats;
    for (const QString& id : ids.split(u' '))
        formats.append(format(id));
    return {{text("id"), text("x")},
            {text("title"), text("t")},
            {text("extractor"), text("test")},
            {text("extractor_key"), text("Test")},
            {text("webpage_url"), text("http://127.0.0.1/x")},
            {text("formats"), formats}};
}

/// The words by which the program's own command has formats chosen.
QString choosingWords() {
    ArgumentPrinter tool(text("yt-dlp"));
    const QStringList words =
        tool.run(downloadCommand(makeRow(SourceType::link, text("t"), text("u")), text("/e"),
                                 DownloadMode::video, {tool.path(), std::nullopt, text("/")}))
            .arguments;
    QStringList chosen;
    for (const char* option : {"-f", "-S", "--merge-output-format"}) {
        const auto at = words.indexOf(text(option));
        EXPECT_GE(at, 0) << option;
        chosen += text(option) + u' ' + shellQuoted(words.value(at + 1));
    }
    return chosen.join(u' ');
}

TEST(VideoFormats, TheBestPictureUpTo1080LinesInTheCodecsThatPlayEverywhere) {
    const std::pair<const char*, const char*> lists[] = {
        {"18 136 137 140 248 251 399 401", "137+140 mp4"},
        {"137 140 251-mp4", "137+140 mp4"},
        {"18", "18 mp4"},
        {"18 22", "22 mp4"},
        {"22 18", "22 mp4"},
        {"43 247 248 251", "248+251 mkv"},
        {"401", "401 mp4"},
        {"140 401 18", "18 mp4"},  // 2160 lines are beyond what a projector shows
        {"140 313 401", "313+140 mkv"},
        {"22 137 140", "137+140 mp4"},
        {"18 137 299 303 335 699 140 251", "299+140 mp4"},  // twice the frames, not twice the range
        {"335 399 251 140", "399+140 mp4"},
        {"137 137-drm 140", "137+140 mp4"},
        {"board 18", "18 mp4"},
        {"137 140-de 140-en", "137+140-en mp4"},
        {"137 251-en 140-de", "137+251-en mkv"},  // the song's own language before AAC
        {"137 248", "137 mp4"},
        {"140 251", "140 m4a"},
        {"251", "251 webm"},
        {"43", "43 webm"},
        {"vp8 vorbis", "vp8+vorbis mkv"},
    };
    Machine machine;
    ShellRunner shell(machine.supervisor);
    QJsonArray pages;
    QStringList expected;
    for (const auto& [ids, choice] : lists) {
        pages.append(page(text(ids)));
        expected.append(text(ids) + text(" -> ") + text(choice));
    }
    const QString file = machine.path(text("pages.json"));
    ASSERT_TRUE(writeFile(file, QJsonDocument(pages).toJson()));

    const CommandResult result = shell.runShellApart(
        text("yt-dlp --ignore-config --simulate --print '%(format_id)s %(ext)s' "
             "--load-info-json ") +
            shellQuoted(file) + u' ' + choosingWords(),
        100);
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    QStringList choices = result.output.trimmed().split(u'\n');
    for (qsizetype i = 0; i < choices.size() && i < expected.size(); ++i)
        choices[i].prepend(text(lists[i].first) + text(" -> "));
    EXPECT_EQ(choices, expected);
}

}  // namespace
}  // namespace reelcrate
