#include "console/arguments.h"

#include "support/texts.h"

namespace reelcrate {
namespace {

Arguments parsed(const QStringList& words) {
    return parseArguments(QStringList{text("reelcrate")} + words);
}

TEST(Arguments, WrongUsageIsToldFromRightUsage) {
    const struct {
        const char* words;
        bool isRight;
    } cases[] = {
        {"--headless http://x", true},
        {"--headless -", true},
        {"--headless --mode mp4 --event E --output D --json http://x - http://y", true},
        {"--headless", false},
        {"--headless --mode OGG http://x", false},
        {"--headless --output= http://x", false},
        {"--headless --output", false},
        {"--headless --unknown http://x", false},
        {"--headless --playlist http://x", true},
        {"--playlist http://x", false},
        {"--headless --setup --playlist", false},
        {"--event E", true},
        {"--setup", false},
        {"--json http://x", false},
        {"--headless --report x.json http://x", true},
        {"--report x.json http://x", false},
        {"--headless --report= http://x", false},
        {"--headless --list L", true},
        {"--headless --list L --list - http://x", true},
        {"--headless --list - -", false},
        {"--headless --list - --list -", false},
        {"--headless --list= http://x", false},
        {"--list L http://x", true},
        {"--list -", false},
        {"--check D --list L", false},
        {"--check D", true},
        {"--check D --json --headless", true},
        {"--check D http://x", false},
        {"--check=", false},
        {"--check", false},
        {"--check D --loudness", true},
        {"--headless --loudness http://x", true},
        {"--headless --loudness --mode mp4 http://x", false},
        {"--help --headless", true},
        {"--version", true},
    };
    for (const auto& [words, isRight] : cases) {
        const Arguments arguments = parsed(text(words).split(u' '));
        EXPECT_EQ(arguments.usageError.isEmpty(), isRight) << words;
    }
}

TEST(Arguments, TakesValuesAsTheyStand) {
    const Arguments arguments =
        parsed({text("--headless"), text("--event"), text("Prom: 2026/27"), text("--mode"),
                text("MP4"), text("see http://x!"), text("-"), text("--download")});
    EXPECT_EQ(arguments.eventName, text("Prom: 2026/27"));
    EXPECT_EQ(arguments.mode, DownloadMode::video);
    EXPECT_EQ(arguments.outputFolder, std::nullopt);
    EXPECT_TRUE(arguments.startsDownloads && !parsed({text("-")}).startsDownloads);
    EXPECT_EQ(arguments.texts, (QStringList{text("see http://x!"), text("-")}));
}

}  // namespace
}  // namespace reelcrate
