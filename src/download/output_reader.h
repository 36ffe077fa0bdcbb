#pragma once

#include <QString>
#include <QStringView>

/// What a download's output says of its end. Reads a stream of pieces, also where a line is split
/// between two. One thread at a time; text that says nothing known is no failure.
namespace reelcrate {

class OutputReader {
public:
    void read(const QString& piece);

    /// The link may be private or ask for a login.
    bool mentionsLogin() const { return m_mentionsLogin; }

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

    QString m_unfinishedLine;
    Stage m_stage = Stage::transfer;
    bool m_mentionsLogin = false;
    bool m_cannotResume = false;
    int m_conversionErrors = 0;
    int m_coverErrors = 0;
    int m_otherErrors = 0;
};

}  // namespace reelcrate
