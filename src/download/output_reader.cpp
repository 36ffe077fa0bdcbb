#include "download/output_reader.h"

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

constexpr qsizetype longestLine = 65'536;  // UTF-16 units

constexpr qsizetype mostComplaints = 32;
constexpr qsizetype longestComplaint = 2'000;  // UTF-16 units

constexpr QLatin1String errorMark{"ERROR: "};

bool isLineBreak(QChar c) {
    return c == u'\n' || c == u'\r';
}

}  // namespace

void OutputReader::read(const QString& piece) {
    const QString text = m_unfinishedLine + piece;
    auto begin = text.cbegin();
    while (true) {
        const auto end = std::find_if(begin, text.cend(), isLineBreak);
        if (end == text.cend())
            break;
        readLine(QStringView(begin, end));
        begin = end + 1;
    }
    m_unfinishedLine = QStringView(begin, text.cend()).toString();
    if (m_unfinishedLine.size() > longestLine)
        m_unfinishedLine.clear();
}

// yt-dlp (2024 to 2026) names in brackets what prints a line, and goes on after errors: which step
// an error belongs to is told by the line before it.
void OutputReader::readLine(QStringView line) {
    // An error of a transfer begins a line of its own: "ERROR: \r[download] Got error: timed out".
    if (std::exchange(m_errorGoesOn, line == errorMark))
        keep(QString(errorMark + line.toString()));
    if (line.startsWith(u"WARNING: "))
        keep(line);
    if (line.startsWith(u'[')) {
        m_foundNothing = m_foundNothing || (line.startsWith(u"[youtube:search] Playlist ") &&
                                            line.endsWith(u": Downloading 0 items"));
        readFormats(line);
        if (line.startsWith(u"[ExtractAudio]"))
            m_stage = Stage::conversion;
        else if (line.startsWith(u"[EmbedThumbnail]") || line.startsWith(u"[ThumbnailsConvertor]"))
            m_stage = Stage::cover;
        else
            m_stage = Stage::transfer;
        return;
    }
    if (line.startsWith(errorMark))
        readError(line);
}

// "[info] ID: Downloading 1 format(s): 137+140"
void OutputReader::readFormats(QStringView line) {
    constexpr QLatin1String mark{" format(s): "};
    const qsizetype at = line.indexOf(mark);
    if (m_formats.isEmpty() && at >= 0 && line.startsWith(u"[info] "))
        m_formats = line.sliced(at + mark.size()).toString();
}

void OutputReader::readError(QStringView line) {
    if (!m_errorGoesOn)
        keep(line);
    m_cannotResume = m_cannotResume || line.contains(u"HTTP Error 416");
    switch (m_stage) {
        case Stage::transfer:
            ++m_otherErrors;
            break;
        case Stage::conversion:
            ++m_conversionErrors;
            break;
        case Stage::cover:
            ++m_coverErrors;
            break;
    }
}

void OutputReader::keep(QStringView complaint) {
    m_complaints.append(complaint.first(std::min(complaint.size(), longestComplaint)).toString());
    if (m_complaints.size() > mostComplaints)
        m_complaints.removeFirst();
}

}  // namespace reelcrate
