#include "library/ffmpeg_words.h"

#include <QRegularExpression>
#include <QStringView>

#include <algorithm>
#include <array>

namespace reelcrate {

namespace {

// Two blanks stand before what ffmpeg says itself, four before the tags, which can say anything.
const QString inputStart = QStringLiteral("[info] Input #0, ");
const QString outputStart = QStringLiteral("[info] Output #0, ");
const QString durationStart = QStringLiteral("[info]   Duration: ");
const QString chaptersStart = QStringLiteral("[info]   Chapters:");
const QString streamStart = QStringLiteral("[info]   Stream #0:");

constexpr QLatin1String cutSamples{"] [warning] Packet corrupt"};

constexpr std::array writeErrors{u"Error writing", u"Error closing", u"av_interleaved_write_frame",
                                 u"Error muxing",  u"to the muxer",  u"No space left on device"};

std::optional<double> secondsOf(const QString& text) {
    static const QRegularExpression clock(QStringLiteral(R"(^(\d+):(\d\d):(\d\d\.\d+))"));
    const auto match = clock.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1).toDouble() * 3600 + match.captured(2).toDouble() * 60 +
           match.captured(3).toDouble();
}

std::optional<MediaStream> streamOf(const QString& line) {
    static const QRegularExpression form(
        QStringLiteral(R"(#0:\d+[^ ]*: (Video|Audio|[A-Z]\w+): (\w+))"));
    const auto match = form.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    MediaStream stream{MediaStream::Kind::other, match.captured(2)};
    if (match.captured(1) == u"Video")
        stream.kind = line.contains(u"(attached pic)") ? MediaStream::Kind::cover
                                                       : MediaStream::Kind::picture;
    if (match.captured(1) == u"Audio")
        stream.kind = MediaStream::Kind::sound;
    return stream;
}

/// What an error line says, without the part of ffmpeg that says it.
std::optional<QString> errorOf(const QString& line) {
    static const QRegularExpression form(
        QStringLiteral(R"(^(?:\[[^\]]* @ [^\]]*\] )?\[(?:error|fatal|panic)\] (.*))"));
    const auto match = form.match(line);
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

bool isWriteError(const QString& error) {
    return std::any_of(writeErrors.begin(), writeErrors.end(),
                       [&](QStringView words) { return error.contains(words); });
}

void addInputLine(FfmpegWords& words, const QString& line) {
    if (line.startsWith(inputStart))
        words.format = line.mid(inputStart.size()).section(QStringLiteral(", from '"), 0, 0);
    else if (line.startsWith(durationStart))
        words.headerSeconds = secondsOf(line.mid(durationStart.size()));
    else if (line == chaptersStart)
        words.hasChapters = true;
    else if (line.startsWith(streamStart)) {
        if (const auto stream = streamOf(line))
            words.streams.append(*stream);
    }
}

void addError(FfmpegWords& words, const QString& error) {
    if (words.complaint.isEmpty())
        words.complaint = error.trimmed();
    words.cutOff = words.cutOff || error.contains(u": partial file") ||
                   error.startsWith(u"File ended prematurely");
    words.writeFailed = words.writeFailed || isWriteError(error);
}

}  // namespace

FfmpegWords readFfmpegWords(const QString& errors) {
    FfmpegWords words;
    bool ofInput = true;
    bool guessed = false;
    for (const QString& line : errors.split(u'\n')) {
        ofInput = ofInput && !line.startsWith(outputStart);
        if (ofInput)
            addInputLine(words, line);
        // Said of an MP3 without a table of its own: the length then is the file's size by the rate
        // of its first frame, and says nothing.
        guessed = guessed || line.contains(u"[warning] Estimating duration from bitrate");
        // A piece of samples can be spoilt by nothing but the file's end.
        words.cutOff = words.cutOff || (line.startsWith(u"[wav @ ") && line.contains(cutSamples));
        if (const auto error = errorOf(line))
            addError(words, *error);
    }
    if (guessed)
        words.headerSeconds.reset();
    return words;
}

}  // namespace reelcrate
