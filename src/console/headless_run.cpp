#include "console/headless_run.h"

#include "app/controller.h"
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

HeadlessRun::HeadlessRun(Controller& controller, const Arguments& arguments)
    : m_controller(controller),
      m_json(arguments.json),
      m_savesPlaylist(arguments.savesPlaylist),
      m_reportPath(arguments.reportPath),
      m_texts(arguments.texts),
      m_lists(arguments.lists) {
    applySettings(arguments, controller);

    // Later, so that each step sees the outcome of a whole operation and not its middle.
    m_advance.setSingleShot(true);
    connect(&m_advance, &QTimer::timeout, this, &HeadlessRun::advance);
    const auto advanceLater = [this] { m_advance.start(0); };
    connect(&controller, &Controller::toolsChanged, this, advanceLater);
    connect(&controller, &Controller::activeDownloadRunsChanged, this, advanceLater);
    connect(&controller, &Controller::songListNoted, this,
            [this](const QString& note) { m_notes.append(note.trimmed()); });
    connect(&controller.queue(), &QueueStore::rowReplaced, this, advanceLater);
    connect(&controller.queue(), &QueueStore::rowChanged, this,
            [advanceLater](qsizetype, QueueStore::Fields fields) {
                if (fields & QueueStore::IsResolvingInfo)
                    advanceLater();
            });
}

HeadlessRun::~HeadlessRun() = default;

void HeadlessRun::start() {
    m_display = ProgressDisplay::on(m_json ? stderr : stdout, m_controller);
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
        m_controller.tools().checkTools();
}

void HeadlessRun::readInput() {
    m_input = std::make_unique<StandardInput>();
    connect(m_input.get(), &StandardInput::finished, this, [this](const QByteArray& bytes) {
        m_inputBytes = bytes;
        if (const qsizetype at = m_texts.indexOf(standardInput); at >= 0)
            m_texts.replace(at, QString::fromUtf8(bytes));
        m_controller.tools().checkTools();
    });
}

void HeadlessRun::advance() {
    if (m_phase == Phase::checkingTools && !m_controller.tools().isCheckingTools())
        addSongs();
    if (m_phase == Phase::reading && !isReading())
        startDownloads();
    if (m_phase == Phase::downloading && m_controller.runs().activeDownloadRuns() == 0 &&
        !isReading()) {
        addAccount();
        const bool isReported = saveAccount();
        const bool isSaved = savePlaylist() && isReported;
        end(isSaved && allRowsAreComplete() ? allComplete : someNeedAttention);
    }
}

void HeadlessRun::addSongs() {
    if (!m_controller.tools().coreToolsReady()) {
        complain(m_controller.tools().toolLog());
        complain(m_controller.tools().setupDetailText());
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
    m_controller.setPastedLinks(m_texts.join(u'\n'));
    m_controller.addSongsFromFieldOrClipboard();
}

/// False when one of them is no such text: before a run is half of what was asked for.
bool HeadlessRun::addLists() {
    return std::all_of(m_lists.begin(), m_lists.end(), [this](const QString& list) {
        return list == standardInput ? m_controller.addSongList(textOfList(m_inputBytes),
                                                                QStringLiteral("Standard input"))
                                     : m_controller.addSongListFile(list);
    });
}

bool HeadlessRun::isReading() const {
    const auto& rows = m_controller.queue().rows();
    return std::any_of(rows.begin(), rows.end(),
                       [](const DownloadItem& row) { return row.isResolvingInfo; });
}

void HeadlessRun::startDownloads() {
    m_phase = Phase::downloading;
    m_controller.startDownloads();
    // A run that has ended here already never began: its log says why.
    if (m_controller.runs().activeDownloadRuns() == 0 && !isReading() &&
        m_controller.queue().size() > 0)
        complain(m_controller.runs().runLog().text());
}

bool HeadlessRun::allRowsAreComplete() const {
    const QList<DownloadItem>& rows = m_controller.queue().rows();
    const auto isDone = [](const DownloadItem& row) {
        return row.status == QueueStatus::complete || row.reading == LinkReading::repeated;
    };
    return !rows.isEmpty() && std::all_of(rows.begin(), rows.end(), isDone);
}

void HeadlessRun::addAccount() {
    if (m_controller.queue().size() == 0)
        return;
    EventAccount account = m_controller.eventAccount();
    account.unreadLines.clear();  // what became of each list stands there already
    for (const QString& line : accountText(account).trimmed().split(u'\n'))
        m_notes.append(printable(line));
}

/// Both are false when what was asked for could not be written.
bool HeadlessRun::saveAccount() {
    const QString failure =
        m_reportPath ? saveReport(m_controller.eventAccount(), *m_reportPath) : QString();
    if (!failure.isEmpty())
        m_notes.append(QStringLiteral("Could not save the account: ") + failure);
    return failure.isEmpty();
}

bool HeadlessRun::savePlaylist() {
    if (!m_savesPlaylist)
        return true;
    const PlaylistSaving saving = m_controller.savePlaylist();
    m_notes.append(playlistSummary(saving) +
                   (saving.songs > 0 ? QStringLiteral(": ") + saving.path : QString()));
    return saving.failure.isEmpty();
}

void HeadlessRun::interrupt(int signalNumber) {
    constexpr int endedBySignal = 128;
    if (m_phase == Phase::ended)
        return;
    m_controller.shutDown();
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
        print(stdout, QJsonDocument(queueAsJson(m_controller.queue().rows())).toJson());
    Q_EMIT finished(exitStatus);
}

int runHeadless(Controller& controller, const Arguments& arguments) {
    HeadlessRun run(controller, arguments);
    TerminationSignals signals;
    QObject::connect(&signals, &TerminationSignals::received, &run, &HeadlessRun::interrupt);
    QObject::connect(
        &run, &HeadlessRun::finished, qApp, [](int status) { QCoreApplication::exit(status); },
        Qt::QueuedConnection);
    run.start();
    return QCoreApplication::exec();
}

}  // namespace reelcrate
