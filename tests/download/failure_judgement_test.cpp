#include "download/failure_judgement.h"

#include "download/output_reader.h"
#include "support/sample.h"
#include "support/texts.h"

namespace reelcrate {
namespace {

using enum FailureCause;

/// What scripts/record_failures.py recorded under the name of the tool of that version.
QString recorded(const char* version, const char* name) {
    const QString all =
        text("\n") + sample(qPrintable(text("yt-dlp_failures_%1.txt").arg(text(version))));
    const QString heading = text("\n== ") + text(name) + text("\n");
    const qsizetype begin = all.indexOf(heading);
    EXPECT_GE(begin, 0) << name;
    const qsizetype end = all.indexOf(text("\n== "), begin + 1);
    return all.mid(begin + heading.size(), end < 0 ? -1 : end + 1 - begin - heading.size());
}

FailureCause judged(const QString& output, bool toolIsOld) {
    OutputReader reader;
    reader.read(output);
    return reader.foundNothing() ? noMatch : judgedCause(reader.complaints(), toolIsOld);
}

TEST(JudgedCause, OfWhatTheRealToolPrinted) {
    struct Case {
        const char* name;
        FailureCause cause;
        std::optional<FailureCause> whenOld = {};
    };
    const Case cases[] = {
        {"page 401", loginNeeded},
        {"page 403", other},
        {"page 404", noSuchPage},
        {"page 410", noSuchPage},
        {"page 429", siteLimit},
        {"page 451", notAvailable},
        {"page 500", other},
        {"page 503", other},
        {"media 403", other, toolTooOld},
        {"media 404", noSuchPage},
        {"media 429", siteLimit},
        {"media 503", other},
        {"media cut", noConnection},
        {"media stalled", noConnection},
        {"no media", noSuchPage},
        {"no name", noConnection},
        {"refused", noConnection},
        {"timed out", noConnection},
        {"proxy refused", noConnection},
        {"full drive", cannotWrite},
        {"file size limit", cannotWrite},
        {"read-only folder", cannotWrite},
        {"no ffmpeg", converterMissing},
        {"video age", loginNeeded},
        {"video bot", siteLimit},
        {"video private", loginNeeded},
        {"video members", loginNeeded},
        {"video removed", notAvailable},
        {"video terminated", notAvailable},
        {"video unavailable", notAvailable},
        {"video country", notAvailable},
        {"video hour", siteLimit},
        {"video 403", other, toolTooOld},
        {"video 429", siteLimit},
        {"video forbidden", other, toolTooOld},
        {"video signature", other, toolTooOld},
        {"video challenge", other, toolTooOld},
        {"search nothing", noMatch},
        {"search 429", siteLimit},
        {"search bot", siteLimit},
        {"search forbidden", other, toolTooOld},
        {"search offline", noConnection},
    };
    for (const char* version : {"2025.04.30", "2026.10.26"}) {
        for (const Case& each : cases) {
            SCOPED_TRACE(text("%1 of %2").arg(text(each.name), text(version)).toStdString());
            const QString output = recorded(version, each.name);
            EXPECT_EQ(word(judged(output, false)), word(each.cause));
            EXPECT_EQ(word(judged(output, true)), word(each.whenOld.value_or(each.cause)));
        }
    }
}

TEST(JudgedCause, OfFormsAndNotOfWhatIsQuoted) {
    const std::pair<const char*, FailureCause> cases[] = {
        // A title, a file, an address, a search say whatever they like.
        {"[info] Sign in to confirm you're not a bot\nERROR: Postprocessing: Conversion failed!",
         other},
        {"ERROR: Unsupported URL: http://x/HTTP Error 429: private", noSuchPage},
        {"ERROR: [generic] private: rate-limited: Unable to download webpage: HTTP Error 500: "
         "Oops (caused by <HTTPError 500: Oops>)",
         other},
        {"ERROR: [site] 1: Requested format is not available. Use --list-formats", other},
        {"ERROR: [generic] Please log in: An answer that nobody expects", other},
        {"ERROR: unable to open for writing: [Errno 36] File name too long: '/x/Log in, please "
         "[private].m4a.part'",
         other},
        {"ERROR: [site] 1: Cannot read \"Try again later\" from https://x/login?private", other},
        {"ERROR: query \"A \"private\" song\" page 1: Failed to parse JSON", other},
        {"ERROR: [site] 1: 'Members only' is no number", other},
        {"WARNING: [youtube] x: HTTP Error 429: Too Many Requests", other},
        {"warning: [youtube] ERROR: [Errno 28] No space left on device", other},
        // The last known one decides.
        {"ERROR: [youtube] x: Private video\nERROR: [site] 1: This video has been removed\n"
         "ERROR: Postprocessing: Conversion failed!",
         notAvailable},
        // Words of other sites.
        {"ERROR: [site] private: This video is PRIVATE", loginNeeded},
        {"ERROR: [vimeo] 12: This video is only available for registered users. Use --cookies",
         loginNeeded},
        {"ERROR: This video is not available from your location due to geo restriction",
         notAvailable},
        {"ERROR: [site] 1: You've been rate-limited; please report this issue on  https://x",
         siteLimit},
        {"ERROR: [Errno 28] No space left on device", cannotWrite},
        {"[download] Got error: Downloaded 28551 bytes, expected 57103 bytes. Retrying (1/10)...\n"
         "ERROR: Did not get any data blocks",
         noConnection},
        {"", other},
    };
    for (const auto& [output, cause] : cases) {
        SCOPED_TRACE(output);
        EXPECT_EQ(word(judged(text(output) + u'\n', false)), word(cause));
    }
}

TEST(JudgedCause, BlamesAnOldToolOnlyForWhatTheSiteChanged) {
    const QString fault = text(
        "ERROR: [site] 1: Unable to extract title; please report this issue on  "
        "https://x/issues\n");
    EXPECT_EQ(word(judged(fault, true)), word(toolTooOld));
    EXPECT_EQ(word(judged(fault, false)), word(other));
    const QString page = text(
        "ERROR: [site] 1: Unable to download webpage: HTTP Error 403: Forbidden (caused by "
        "<HTTPError 403: Forbidden>)\n");
    EXPECT_EQ(word(judged(page, true)), word(other));
}

}  // namespace
}  // namespace reelcrate
