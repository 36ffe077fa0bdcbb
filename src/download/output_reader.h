#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

/// What a download's output says of its end. Reads a stream of pieces, also where a line is split
/// between two. One thread at a time; text that says nothing known is no failure.
namespace reelcrate {

class OutputReader {
public:
    void read(const QString& piece);

    /// The last lines that begin with "ERROR: " or "WARNING: ", oldest first, cut where they are
    /// long.
    const QStringList& complaints() const { return m_complaints; }

    /// Which of the site's formats are fetched, such as "137+140"; of several media, those of the
    /// first. Empty before that is known.
    const QString& formats() const { return m_formats; }

    /// A search gave no results.
    bool foundNothing() const { return m_foundNothing; }

    /// Sound could not be converted; why, the downloader does not say.
    bool conversionFailed() const { return m_conversionErrors > 0; }

    /// Whatever went wrong concerned pictures for covers alone: the songs are done.
    bool onlyCoversFailed() const {
        return m_coverErrors > 0 && m_conversionErrors == 0 && m_otherErrors == 0;
    }

    /// The site has no more to send of a transfer that was cut off, though it is not taken for
    /// whole.
    bool cannotResume() const { return m_cannotResume; }

private:
    enum class Stage { transfer, conversion, cover };

    void readLine(QStringView line);
    void readFormats(QStringView line);
    void readError(QStringView line);
    void keep(QStringView complaint);

    QString m_unfinishedLine;
    Stage m_stage = Stage::transfer;
    QStringList m_complaints;
    QString m_formats;
    bool m_foundNothing = false;
    bool m_errorGoesOn = false;
    bool m_cannotResume = false;
    int m_conversionErrors = 0;
    int m_coverErrors = 0;
    int m_otherErrors = 0;
};

}  // namespace reelcrate
