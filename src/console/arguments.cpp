#include "console/arguments.h"

#include <QCommandLineParser>

#include <utility>

namespace reelcrate {

namespace {

const QString event = QStringLiteral("event");
const QString output = QStringLiteral("output");
const QString mode = QStringLiteral("mode");
const QString json = QStringLiteral("json");
const QString download = QStringLiteral("download");
const QString headless = QStringLiteral("headless");
const QString setup = QStringLiteral("setup");
const QString checkUpdate = QStringLiteral("check-update");
const QString list = QStringLiteral("list");
const QString playlist = QStringLiteral("playlist");
const QString report = QStringLiteral("report");
const QString check = QStringLiteral("check");
const QString loudness = QStringLiteral("loudness");
const QString help = QStringLiteral("help");
const QString version = QStringLiteral("version");

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        QStringLiteral("Downloads the songs behind share links into one folder named after an "
                       "event. Opens\na window, with the links added that are given.\n\n"
                       "Exit status: 0 all songs are complete; 1 some need attention; 2 wrong "
                       "usage;\n3 yt-dlp or ffmpeg is missing; 130, 143 ended by Ctrl-C or by a "
                       "request to terminate."));
    parser.addOptions({
        {headless, QStringLiteral("Work without a window.")},
        {event, QStringLiteral("Name of the event, and of its folder (default: today's date)."),
         QStringLiteral("NAME")},
        {output,
         QStringLiteral("Folder that holds the event's folder (default: \"Reelcrate Downloads\" on "
                        "the desktop)."),
         QStringLiteral("DIR")},
        {mode, QStringLiteral("MP3 for songs or MP4 for videos (default: MP3)."),
         QStringLiteral("MP3|MP4")},
        {list,
         QStringLiteral("Add the songs that a text names, one a line (\"Artist - Title\"), or a "
                        "table (CSV); - reads standard input."),
         QStringLiteral("FILE")},
        {json, QStringLiteral("Print the queue as JSON at the end, and nothing else, on standard "
                              "output.")},
        {download, QStringLiteral("In the window: download the links once they have been read.")},
        {setup, QStringLiteral("With --headless: install what is missing or newer, and end.")},
        {checkUpdate, QStringLiteral("Tell whether there is a newer version, and end.")},
        {playlist, QStringLiteral("With --headless: write the event's playlist, NAME.m3u8, into "
                                  "its folder at the end.")},
        {report,
         QStringLiteral("With --headless: write the event's account, as JSON, into a file at the "
                        "end."),
         QStringLiteral("FILE")},
        {check,
         QStringLiteral("Decode every song in an event's folder, tell what needs attention, and "
                        "end."),
         QStringLiteral("DIR")},
        {loudness, QStringLiteral(
                       "Write each MP3's loudness into its tags (ReplayGain), so that players even "
                       "songs out; with --check: measure it.")},
        {{QStringLiteral("h"), help}, QStringLiteral("Show this help.")},
        {{QStringLiteral("v"), version},
         QStringLiteral("Show the program's version, and its tools'.")},
    });
    parser.addPositionalArgument(
        QStringLiteral("LINK"),
        QStringLiteral("Links, or any text with links in it; - reads text from standard input."),
        QStringLiteral("LINK..."));
}

std::optional<QString> valueOf(const QCommandLineParser& parser, const QString& option) {
    if (!parser.isSet(option))
        return std::nullopt;
    return parser.value(option);
}

Arguments::Action actionOf(const QCommandLineParser& parser) {
    using Action = Arguments::Action;
    const std::pair<QString, Action> actions[] = {{help, Action::showHelp},
                                                  {version, Action::showVersion},
                                                  {checkUpdate, Action::checkUpdate},
                                                  {check, Action::checkFolder},
                                                  {setup, Action::setUp}};
    for (const auto& [option, action] : actions) {
        if (parser.isSet(option))
            return action;
    }
    return Action::download;
}

}  // namespace

Arguments parseArguments(const QStringList& commandLine) {
    QCommandLineParser parser;
    describe(parser);
    Arguments arguments;
    if (!parser.parse(commandLine)) {
        arguments.usageError = parser.errorText();
        return arguments;
    }
    arguments.action = actionOf(parser);
    arguments.headless = parser.isSet(headless);
    arguments.json = parser.isSet(json);
    arguments.loudness = parser.isSet(loudness);
    arguments.savesPlaylist = parser.isSet(playlist);
    arguments.reportPath = valueOf(parser, report);
    arguments.startsDownloads = parser.isSet(download);
    arguments.eventName = valueOf(parser, event);
    arguments.outputFolder = valueOf(parser, output);
    arguments.checkedFolder = parser.value(check);
    arguments.texts = parser.positionalArguments();
    arguments.lists = parser.values(list);

    const QString modeName = valueOf(parser, mode).value_or(rawValue(DownloadMode::audio));
    const auto chosenMode = downloadModeFromRawValue(modeName.toUpper());
    if (chosenMode)
        arguments.mode = *chosenMode;
    else
        arguments.usageError = QStringLiteral("Unknown mode '%1': use MP3 or MP4.").arg(modeName);
    if (arguments.outputFolder && arguments.outputFolder->isEmpty())
        arguments.usageError = QStringLiteral("The output folder has no name.");
    const bool downloads = arguments.action == Arguments::Action::download;
    const qsizetype inputs =
        arguments.texts.count(QStringLiteral("-")) + arguments.lists.count(QStringLiteral("-"));
    if (downloads && arguments.headless && arguments.texts.isEmpty() && arguments.lists.isEmpty())
        arguments.usageError = QStringLiteral("No link given.");
    if (arguments.lists.contains(QString()))
        arguments.usageError = QStringLiteral("The list has no name.");
    if (inputs > 1 && arguments.lists.contains(QStringLiteral("-")))
        arguments.usageError = QStringLiteral("Standard input can be read once.");
    if (!downloads && !arguments.lists.isEmpty())
        arguments.usageError = QStringLiteral("--list goes with downloads.");
    if (arguments.savesPlaylist && !(downloads && arguments.headless))
        arguments.usageError = QStringLiteral("--playlist goes with --headless.");
    if (arguments.reportPath && !(downloads && arguments.headless))
        arguments.usageError = QStringLiteral("--report goes with --headless.");
    if (arguments.reportPath && arguments.reportPath->isEmpty())
        arguments.usageError = QStringLiteral("The file for the account has no name.");
    if (arguments.needsWindow() && (arguments.json || inputs > 0))
        arguments.usageError = QStringLiteral("--json and - go with --headless.");
    if (arguments.action == Arguments::Action::setUp && !arguments.headless)
        arguments.usageError = QStringLiteral("--setup goes with --headless.");
    if (arguments.loudness && arguments.mode == DownloadMode::video)
        arguments.usageError = QStringLiteral("--loudness goes with MP3.");
    const bool checks = arguments.action == Arguments::Action::checkFolder;
    if (checks && arguments.checkedFolder.isEmpty())
        arguments.usageError = QStringLiteral("The folder to check has no name.");
    if (checks && !arguments.texts.isEmpty())
        arguments.usageError = QStringLiteral("--check looks at one folder, without links.");
    return arguments;
}

QString helpText() {
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}

}  // namespace reelcrate
