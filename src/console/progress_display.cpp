#include "console/progress_display.h"

#include "app/controller.h"
#include "console/row_text.h"

#include <algorithm>
#include <chrono>
#include <sys/ioctl.h>
#include <unistd.h>

namespace reelcrate {

namespace {

using namespace std::chrono_literals;

constexpr auto redrawInterval = 100ms;
constexpr int defaultColumns = 80;
constexpr int defaultLines = 24;

void write(std::FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

/// One line for each change of a row's status, for pipes and files.
class LineDisplay final : public ProgressDisplay {
public:
    LineDisplay(std::FILE* stream, const Controller& controller)
        : m_stream(stream), m_controller(controller) {
        const QueueStore& queue = controller.queue();
        connect(&queue, &QueueStore::rowsInserted, this, &LineDisplay::printRows);
        connect(&queue, &QueueStore::rowReplaced, this, &LineDisplay::printRows);
        connect(&queue, &QueueStore::rowChanged, this,
                [this](qsizetype index, QueueStore::Fields fields) {
                    if (fields & QueueStore::Status)
                        printRows(index, 1);
                });
    }

    void finish() override { write(m_stream, m_controller.activeSummary() + u'\n'); }

private:
    void printRows(qsizetype first, qsizetype count) {
        QString lines;
        for (qsizetype index = first; index < first + count; ++index)
            lines += statusLine(m_controller.queue().rows().at(index)) + u'\n';
        write(m_stream, lines);
    }

    std::FILE* m_stream;
    const Controller& m_controller;
};

/// The active rows and the summary at the bottom of a terminal, below the rows that have ended.
class TerminalDisplay final : public ProgressDisplay {
public:
    TerminalDisplay(std::FILE* stream, const Controller& controller)
        : m_stream(stream), m_controller(controller) {
        m_redraw.setSingleShot(true);
        m_redraw.setInterval(redrawInterval);
        connect(&m_redraw, &QTimer::timeout, this, &TerminalDisplay::draw);
        const QueueStore& queue = controller.queue();
        connect(&controller, &Controller::activeSummaryChanged, this, &TerminalDisplay::drawSoon);
        connect(&queue, &QueueStore::rowsInserted, this, &TerminalDisplay::drawSoon);
        connect(&queue, &QueueStore::rowReplaced, this, [this](qsizetype first, qsizetype count) {
            for (qsizetype index = first; index < first + count; ++index)
                keepIfEnded(index);
            drawSoon();
        });
        connect(&queue, &QueueStore::rowChanged, this,
                [this](qsizetype index, QueueStore::Fields fields) {
                    if (fields & QueueStore::Status)
                        keepIfEnded(index);
                    drawSoon();
                });
    }

    void finish() override { draw(); }

private:
    void drawSoon() {
        if (!m_redraw.isActive())
            m_redraw.start();
    }

    void keepIfEnded(qsizetype index) {
        const DownloadItem& row = m_controller.queue().rows().at(index);
        if (row.status == QueueStatus::complete || row.status == QueueStatus::failed)
            m_endedLines.append(statusLine(row));
    }

    void draw() {
        m_redraw.stop();
        const auto [lines, columns] = space();
        QStringList active;
        for (const DownloadItem& row : m_controller.queue().rows()) {
            if (active.size() == lines - 1)
                break;
            if (row.status == QueueStatus::running || row.isResolvingInfo)
                active.append(progressLine(row, columns));
        }
        active.append(fitted(printable(m_controller.activeSummary()), columns));

        QString screen;
        if (m_drawnLines > 0)
            screen += QStringLiteral("\x1b[%1A").arg(m_drawnLines);  // up to the first drawn line
        screen += QStringLiteral("\r\x1b[J");                        // clear from here on
        for (const QString& line : std::as_const(m_endedLines))
            screen += fitted(line, columns) + u'\n';
        screen += active.join(u'\n') + u'\n';
        write(m_stream, screen);
        m_endedLines.clear();
        m_drawnLines = active.size();
    }

    struct Space {
        int lines;
        int columns;
    };

    /// One line and one column fewer than there are: what goes beyond cannot be drawn over, and
    /// some terminals wrap a line as soon as it is full.
    Space space() const {
        winsize size{};
        ::ioctl(::fileno(m_stream), TIOCGWINSZ, &size);
        return {(size.ws_row > 0 ? size.ws_row : defaultLines) - 1,
                (size.ws_col > 0 ? size.ws_col : defaultColumns) - 1};
    }

    std::FILE* m_stream;
    const Controller& m_controller;
    QTimer m_redraw;
    QStringList m_endedLines;
    qsizetype m_drawnLines = 0;
};

}  // namespace

std::unique_ptr<ProgressDisplay> ProgressDisplay::on(std::FILE* stream,
                                                     const Controller& controller) {
    if (::isatty(::fileno(stream)) != 0)
        return std::make_unique<TerminalDisplay>(stream, controller);
    return std::make_unique<LineDisplay>(stream, controller);
}

}  // namespace reelcrate
