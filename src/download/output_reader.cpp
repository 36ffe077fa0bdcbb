#include "download/output_reader.h"

#include "base/text.h"

#include <algorithm>

namespace reelcrate {

namespace {

constexpr qsizetype longestLine = 65'536;  // UTF-16 units

bool mentionsLoginIn(QStringView text) {
    return containsByRarest(text, {u"private"}, u'v', Qt::CaseInsensitive) ||
           containsByRarest(text, {u"login"}, u'g', Qt::CaseInsensitive);
}

bool isLineBreak(QChar c) {
    return c == u'\n' || c == u'\r';
}

}  // namespace

void OutputReader::read(const QString& piece) {
    const QString text = m_unfinishedLine + piece;
    m_mentionsLogin = m_mentionsLogin || mentionsLoginIn(text);
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
    if (line.startsWith(u'[')) {
        if (line.startsWith(u"[ExtractAudio]"))
            m_stage = Stage::conversion;
        else if (line.startsWith(u"[EmbedThumbnail]") || line.startsWith(u"[ThumbnailsConvertor]"))
            m_stage = Stage::cover;
        else
            m_stage = Stage::transfer;
        return;
    }
    if (!line.startsWith(u"ERROR: "))
        return;
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

}  // namespace reelcrate
