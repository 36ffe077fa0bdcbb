#include "download/failure_judgement.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>

// The forms are those of yt-dlp 2025.04.30 and 2026.10.26; tests/data has what they print.

namespace reelcrate {

namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1String errorMark{"ERROR: "};
constexpr QLatin1String warningMark{"WARNING: "};

bool containsAny(const QString& lowered, std::initializer_list<QLatin1String> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](QLatin1String each) { return lowered.contains(each); });
}

/// A complaint's parts: "[site] ID: message".
struct Message {
    QString site;  ///< empty where the downloader itself speaks
    QString text;
};

Message messageIn(const QString& line, QLatin1String mark) {
    static const QRegularExpression form(QStringLiteral(R"(^\[([\w:.+-]+)\] (?:[^\s:]+: )?(.*)$)"));
    static const QRegularExpression search(QStringLiteral(R"(^query ".*" page \d+: )"));
    const QString rest = line.sliced(mark.size()).remove(search);
    const QRegularExpressionMatch match = form.match(rest);
    if (!match.hasMatch() || match.captured(1) == u"download")
        return {{}, rest};
    return {match.captured(1), match.captured(2)};
}

/// The status that a server answered with.
std::optional<int> httpStatus(const QString& message) {
    static const std::array forms{
        // At the end, where no address and no title can stand.
        QRegularExpression(QStringLiteral(
            R"(\(caused by <HTTPError (\d{3}): [^<>]*>\)(?:; please report this issue.*)?$)")),
        QRegularExpression(QStringLiteral(
            R"(^(?:unable to download video data: |\[download\] Got error: )HTTP Error (\d{3}): )")),
    };
    for (const QRegularExpression& form : forms) {
        if (const auto match = form.match(message); match.hasMatch())
            return match.capturedView(1).toInt();
    }
    return std::nullopt;
}

std::optional<FailureCause> causeOfStatus(int status, const Message& message, bool toolIsOld) {
    switch (status) {
        case 401:
        case 407:
            return FailureCause::loginNeeded;
        case 403:
            // That a page is refused has many reasons; of a medium whose address the downloader
            // has made itself, the usual one is that it makes them in yesterday's way.
            return toolIsOld && message.site.isEmpty() ? std::optional(FailureCause::toolTooOld)
                                                       : std::nullopt;
        case 404:
        case 410:
            return FailureCause::noSuchPage;
        case 429:
            return FailureCause::siteLimit;
        case 451:
            return FailureCause::notAvailable;
        default:
            return std::nullopt;
    }
}

/// What the downloader says of the machine and of the connection, in its own words.
std::optional<FailureCause> causeInOwnWords(const QString& message) {
    struct Form {
        QRegularExpression form;
        FailureCause cause;
    };
    static const std::array forms{
        Form{QRegularExpression(QStringLiteral("^Unsupported URL: ")), FailureCause::noSuchPage},
        Form{QRegularExpression(QStringLiteral("^(?:Postprocessing: )?(?:ffprobe and )?ffmpeg not "
                                               "found|^You have requested merging of multiple "
                                               "formats but ffmpeg is not installed")),
             FailureCause::converterMissing},
        // No permission, too large, no space, a read-only drive, over the quota.
        Form{QRegularExpression(
                 QStringLiteral(R"(^(?:unable to [a-z ]+: )?\[Errno (?:1|13|27|28|30|122)\] )")),
             FailureCause::cannotWrite},
        Form{QRegularExpression(QStringLiteral(
                 R"(\(caused by (?:TransportError|ProxyError)\(.*\)\)(?:; please report.*)?$)")),
             FailureCause::noConnection},
        Form{QRegularExpression(QStringLiteral(
                 R"(^(?:unable to download video data: |\[download\] Got error: )(?!HTTP Error)"
                 R"().*(?:timed out|\[Errno -?\d+\]|Connection|bytes read|Downloaded \d+ bytes))")),
             FailureCause::noConnection},
        // So ends a transfer of which more was announced, when a further try brings nothing.
        Form{QRegularExpression(QStringLiteral("^Did not get any data blocks$")),
             FailureCause::noConnection},
    };
    for (const Form& each : forms) {
        if (each.form.match(message).hasMatch())
            return each.cause;
    }
    return std::nullopt;
}

/// The message without what it quotes.
QString unquoted(QString text) {
    static const QRegularExpression quoted(
        QStringLiteral(R"("[^"]*"|(?<!\w)'[^']*'(?!\w)|https?://\S+)"));
    return text.remove(quoted).toLower();
}

/// The downloader has got no addresses from a site that has some.
bool isWithoutAddresses(const QString& message) {
    static const QRegularExpression form(
        QStringLiteral("^(?:Failed to extract any player response|Requested format is not "
                       "available|No video formats found|Unable to extract )"));
    return form.match(message).hasMatch();
}

/// What a site says of one of its pages.
std::optional<FailureCause> causeInWordsOfSite(const Message& message) {
    // It knows no words of any site: what it prints is taken from the address.
    if (message.site == u"generic")
        return std::nullopt;
    const QString text = unquoted(message.text);
    if (containsAny(text, {"not a bot"_L1, "rate-limited"_L1, "rate limit"_L1, "try again later"_L1,
                           "captcha"_L1, "too many requests"_L1}))
        return FailureCause::siteLimit;
    if (containsAny(text, {"confirm your age"_L1, "age-restricted"_L1, "sign in"_L1, "log in"_L1,
                           "login"_L1, "logged in"_L1, "private"_L1, "members"_L1,
                           "registered users"_L1, "--cookies"_L1}))
        return FailureCause::loginNeeded;
    if (containsAny(text, {"removed"_L1, "not available"_L1, "unavailable"_L1, "isn't available"_L1,
                           "no longer available"_L1, "terminated"_L1, "deleted"_L1,
                           "your country"_L1, "your location"_L1, "geo restrict"_L1}))
        return FailureCause::notAvailable;
    return std::nullopt;
}

/// Of the video site's pages, those that the downloader can do without fail with a warning each.
FailureCause causeOfNoAddresses(const QStringList& complaints, bool toolIsOld) {
    for (const QString& line : complaints) {
        if (!line.startsWith(warningMark))
            continue;
        const QString text = messageIn(line, warningMark).text;
        if (httpStatus(text) == 429)
            return FailureCause::siteLimit;
        if (causeInOwnWords(text) == FailureCause::noConnection)
            return FailureCause::noConnection;
    }
    return toolIsOld ? FailureCause::toolTooOld : FailureCause::other;
}

std::optional<FailureCause> causeIn(const QString& error, const QStringList& complaints,
                                    bool toolIsOld) {
    const Message message = messageIn(error, errorMark);
    if (const auto status = httpStatus(message.text))
        return causeOfStatus(*status, message, toolIsOld);
    if (const auto cause = causeInOwnWords(message.text))
        return cause;
    if (isWithoutAddresses(message.text))
        return causeOfNoAddresses(complaints, toolIsOld);
    if (const auto cause = causeInWordsOfSite(message))
        return cause;
    // So it ends what it takes for a fault of its own.
    if (message.text.contains(u"; please report this issue on "))
        return causeOfNoAddresses(complaints, toolIsOld);
    return std::nullopt;
}

}  // namespace

FailureCause judgedCause(const QStringList& complaints, bool toolIsOld) {
    for (auto line = complaints.crbegin(); line != complaints.crend(); ++line) {
        if (!line->startsWith(errorMark))
            continue;
        if (const auto cause = causeIn(*line, complaints, toolIsOld))
            return *cause;
    }
    return FailureCause::other;
}

}  // namespace reelcrate
