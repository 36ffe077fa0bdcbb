// Runs without a window, from their arguments to their exit status, on stand-in tools.

#include "console/headless_run.h"

#include "app/controller.h"
#include "console/progress_display.h"
#include "console/row_text.h"
#include "console/run_settings.h"
#include "support/machine.h"
#include "support/texts.h"

#include <QDir>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace reelcrate {
namespace {

using namespace std::chrono_literals;

class HeadlessRunTest : public testing::Test {
protected:
    HeadlessRunTest() {
        machine.install(text("yt-dlp"));
        machine.linkConverter();
        machine.installSong();
        setup.toolPlaces = machine.places();
        setup.resolutionTiming = {1ms, 1ms, 1ms};
        setup.downloadTiming = {1ms, 1ms, 1ms};
    }

    /// In words, @ stands for the machine's folder.
    Arguments parsed(const char* words) const {
        const QString all = text("reelcrate --headless --event Prom ") + text(words);
        return parseArguments(QString(all).replace(u'@', machine.path(text("."))).split(u' '));
    }

    /// The exit status. What was printed stands in `out` and `err` then.
    int run(const char* words) {
        Controller controller(machine.supervisor, setup);
        HeadlessRun run(controller, parsed(words));
        std::optional<int> status;
        QObject::connect(&run, &HeadlessRun::finished, [&](int end) { status = end; });
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        run.start();
        EXPECT_TRUE(waitUntil([&] { return status.has_value(); }));
        out = text(testing::internal::GetCapturedStdout().c_str());
        err = text(testing::internal::GetCapturedStderr().c_str());
        return status.value_or(-1);
    }

    Machine machine;
    ControllerSetup setup;
    QString out;
    QString err;
};

TEST_F(HeadlessRunTest, EndsWithWhatItsSongsCameTo) {
    writeFile(machine.path(text("songs")), "hello\n");
    writeFile(machine.path(text("file")), "no folder");
    QDir().mkpath(machine.path(text("taken/Prom/Prom.m3u8")));
    const struct {
        const char* words;
        int status;
        const char* told;  // once
    } cases[] = {
        {"--output @/twice http://site/song/a http://site/song/a", 0, "1 song"},
        {"--output @/listed --list @/songs http://site/song/a", 0, "hello"},
        {"--output @/none --list @/none http://site/song/a", 2, "none"},
        {"--output @/taken --playlist http://site/song/a", 1, "Could not save the playlist"},
        {"--output @/file http://site/song/a", 1, "Could not create output folders"},
    };
    for (const auto& [words, status, told] : cases) {
        SCOPED_TRACE(words);
        EXPECT_EQ(run(words), status);
        EXPECT_EQ(err.count(text(told)), 1) << err.toStdString();
        EXPECT_LE(out.count(text("\nDownloading ")), 1) << out.toStdString();
    }
}

TEST_F(HeadlessRunTest, WhatTheCommandLineSaysIsSet) {
    Controller controller(machine.supervisor, setup);
    applySettings(parsed("--loudness --output here/../there http://site/song/a"), controller);
    EXPECT_TRUE(controller.tagsLoudness());
    EXPECT_EQ(controller.eventFolder(), QDir::current().filePath(text("there/Prom")));
}

TEST_F(HeadlessRunTest, OnATerminalWhatGoesOnStandsBelowWhatHasEnded) {
    Controller controller(machine.supervisor, setup);
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    std::FILE* stream = std::fopen(::ptsname(terminal), "w");
    ASSERT_TRUE(stream);
    const winsize window{.ws_row = 4, .ws_col = 40, .ws_xpixel = 0, .ws_ypixel = 0};
    ::ioctl(terminal, TIOCSWINSZ, &window);
    const auto display = ProgressDisplay::on(stream, controller);
    for (const char* name : {"a", "b", "c", "d", "e"})
        controller.addLinksToQueue({text("http://site/song/") + text(name)});
    using enum QueueStatus;
    qsizetype index = 0;
    for (const QueueStatus status : {complete, failed, running, running, running}) {
        const_cast<QueueStore&>(controller.queue())
            .update(controller.queue().rows().at(index++).id, [&](DownloadItem& row) {
                row.status = status;
                row.isResolvingInfo = false;
            });
    }
    const QList<DownloadItem>& rows = controller.queue().rows();
    const QString active = progressLine(rows.at(2), 39) + u'\n' + progressLine(rows.at(3), 39) +
                           u'\n' + controller.activeSummary() + u'\n';
    const auto shown = [&] {
        display->finish();
        // A terminal may hand over what was written in pieces.
        QByteArray bytes;
        const QByteArray last = controller.activeSummary().toUtf8() + "\r\n";
        std::array<char, 4096> piece{};
        while (!bytes.endsWith(last)) {
            const ssize_t size = ::read(terminal, piece.data(), piece.size());
            if (size <= 0)
                break;
            bytes.append(piece.data(), size);
        }
        return QString::fromUtf8(bytes).remove(u'\r');
    };
    EXPECT_EQ(shown(), text("\x1b[J") + fitted(statusLine(rows.at(0)), 39) + u'\n' +
                           fitted(statusLine(rows.at(1)), 39) + u'\n' + active);
    EXPECT_EQ(shown(), text("\x1b[3A\x1b[J") + active);
    std::fclose(stream);
    ::close(terminal);
}

}  // namespace
}  // namespace reelcrate
