#include "console/headless_run.h"

#include "app/content_view.h"
#include "console/account_report.h"
#include "console/print.h"
#include "console/progress_display.h"
#include "console/row_text.h"
#include "console/run_settings.h"
#include "console/standard_input.h"
#include "console/termination_signals.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

namespace reelcrate {

namespace {

const QString standardInput = QStringLiteral("-");

void complain(const QString& text) {
    if (!text.isEmpty())
        print(stderr, text.toUtf8() + '\n');
}

}  // namespace

HeadlessRun::HeadlessRun(ContentView& view, const Arguments& arguments)
    : m_view(view),
      m_json(arguments.json),
      m_savesPlaylist(arguments.savesPlaylist),
      m_reportPath(arguments.reportPath),
      m_texts(arguments.texts),
      m_lists(arguments.lists) {
    applySettings(arguments, view);

    // Later, so that each step sees the outcome of a whole operation and not its middle.
    m_advance.setSingleShot(true);
    connect(&m_advance, &QTimer::timeout, this, &HeadlessRun::advance);
    const auto advanceLater = [this] { m_advance.start(0); };
    connect(&view, &ContentView::toolsChanged, this, advanceLater);
    connect(&view, &ContentView::activeDownloadRunsChanged, this, advanceLater);
    connect(&view, &ContentView::songListNoted, this,
            [this](const QString& note) { m_notes.append(note.trimmed()); });
    connect(&view.queue(), &QueueStore::rowReplaced, this, advanceLater);
    connect(&view.queue(), &QueueStore::rowChanged, this,
            [advanceLater](qsizetype, QueueStore::Fields fields) {
                if (fields & QueueStore::IsResolvingInfo)
                    advanceLater();
            });
}

HeadlessRun::~HeadlessRun() = default;

void HeadlessRun::start() {
    m_display = ProgressDisplay::on(m_json ? stderr : stdout, m_view);
    // Now, and not after an evening's run.
    if (const QString reason = m_reportPath ? whyNoReport(*m_reportPath) : QString();
        !reason.isEmpty()) {
        m_notes.append(QStringLiteral("Cannot save the account as %1: ").arg(*m_reportPath) +
                       reason);
        end(wrongUsage);
        return;
    }
    if (m_texts.contains(standardInput) || m_lists.contains(standardInput))
        readInput();
    else
        m_view.checkTools();
}

void HeadlessRun::readInput() {
    m_input = std::make_unique<StandardInput>();
    connect(m_input.get(), &StandardInput::finished, this, [this](const QByteArray& bytes) {
        m_inputBytes = bytes;
        if (const qsizetype at = m_texts.indexOf(standardInput); at >= 0)
            m_texts.replace(at, QString::fromUtf8(bytes));
        m_view.checkTools();
    });
}

void HeadlessRun::advance() {
    if (m_phase == Phase::checkingTools && !m_view.isCheckingTools())
        addSongs();
    if (m_phase == Phase::reading && !isReading())
        startDownloads();
    if (m_phase == Phase::downloading && m_view.activeDownloadRuns() == 0 && !isReading()) {
        addAccount();
        const bool isReported = saveAccount();
        const bool isSaved = savePlaylist() && isReported;
        end(isSaved && allRowsAreComplete() ? allComplete : someNeedAttention);
    }
}

void HeadlessRun::addSongs() {
    if (!m_view.coreToolsReady()) {
        complain(m_view.toolLog());
        complain(m_view.setupDetailText());
        complain(QStringLiteral("reelcrate --headless --setup installs what is missing."));
        end(toolsMissing);
        return;
    }
    m_phase = Phase::reading;
    if (!addLists()) {
        end(wrongUsage);
        return;
    }
    if (m_texts.isEmpty())
        return;
    m_view.setPastedLinks(m_texts.join(u'\n'));
    m_view.addSongsFromFieldOrClipboard();
}

/// False when one of them is no such text: before a run is half of what was asked for.
bool HeadlessRun::addLists() {
    return std::all_of(m_lists.begin(), m_lists.end(), [this](const QString& list) {
        return list == standardInput
                   ? m_view.addSongList(textOfList(m_inputBytes), QStringLiteral("Standard input"))
                   : m_view.addSongListFile(list);
    });
}

bool HeadlessRun::isReading() const {
    const auto& rows = m_view.queue().rows();
    return std::any_of(rows.begin(), rows.end(),
                       [](const DownloadItem& row) { return row.isResolvingInfo; });
}

void HeadlessRun::startDownloads() {
    m_phase = Phase::downloading;
    m_view.startDownloads();
    // A run that has ended here already never began: its log says why.
    if (m_view.activeDownloadRuns() == 0 && !isReading() && m_view.queue().size() > 0)
        complain(m_view.runLog());
}

bool HeadlessRun::allRowsAreComplete() const {
    const QList<DownloadItem>& rows = m_view.queue().rows();
    const auto isDone = [](const DownloadItem& row) {
        return row.status == QueueStatus::complete || row.reading == LinkReading::repeated;
    };
    return !rows.isEmpty() && std::all_of(rows.begin(), rows.end(), isDone);
}

void HeadlessRun::addAccount() {
    if (m_view.queue().size() == 0)
        return;
    EventAccount account = m_view.eventAccount();
    account.unreadLines.clear();  // what became of each list stands there already
    for (const QString& line : accountText(account).trimmed().split(u'\n'))
        m_notes.append(printable(line));
}

/// Both are false when what was asked for could not be written.
bool HeadlessRun::saveAccount() {
    const QString failure =
        m_reportPath ? saveReport(m_view.eventAccount(), *m_reportPath) : QString();
    if (!failure.isEmpty())
        m_notes.append(QStringLiteral("Could not save the account: ") + failure);
    return failure.isEmpty();
}

bool HeadlessRun::savePlaylist() {
    if (!m_savesPlaylist)
        return true;
    const PlaylistSaving saving = m_view.savePlaylist();
    m_notes.append(playlistSummary(saving) +
                   (saving.songs > 0 ? QStringLiteral(": ") + saving.path : QString()));
    return saving.failure.isEmpty();
}

void HeadlessRun::interrupt(int signalNumber) {
    constexpr int endedBySignal = 128;
    if (m_phase == Phase::ended)
        return;
    m_view.shutDown();
    addAccount();
    saveAccount();
    end(endedBySignal + signalNumber);
}

void HeadlessRun::end(int exitStatus) {
    m_phase = Phase::ended;
    m_display->finish();
    for (const QString& note : std::as_const(m_notes))
        complain(note);
    if (m_json)
        print(stdout, QJsonDocument(queueAsJson(m_view.queue().rows())).toJson());
    Q_EMIT finished(exitStatus);
}

int runHeadless(ContentView& view, const Arguments& arguments) {
    HeadlessRun run(view, arguments);
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &run, &HeadlessRun::interrupt);
    QObject::connect(
        &run, &HeadlessRun::finished, qApp, [](int status) { QCoreApplication::exit(status); },
        Qt::QueuedConnection);
    run.start();
    return QCoreApplication::exec();
}

}  // namespace reelcrate
