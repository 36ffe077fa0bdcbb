#include "tools/shell_runner.h"

#include "base/background_tasks.h"
#include "support/machine.h"
#include "support/texts.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace reelcrate {
namespace {

class ShellRunnerTest : public testing::Test {
protected:
    /// The process ids that the child wrote to a file, a line each, when there are `count`.
    QList<pid_t> processesIn(const QString& file, qsizetype count) {
        QList<pid_t> ids;
        EXPECT_TRUE(pollUntil([&] {
            ids.clear();
            for (const QByteArray& line : readFile(file).split('\n')) {
                if (!line.isEmpty())
                    ids.append(line.toInt());
            }
            return ids.size() == count;
        }));
        return ids;
    }

    static bool isAlive(pid_t process) {
        if (::kill(process, 0) != 0)
            return errno != ESRCH;
        // A dead process that nobody has asked after yet is dead.
        const QByteArray stat = readFile(text("/proc/%1/stat").arg(process));
        return !stat.isEmpty() && !stat.contains(") Z ");
    }

    Machine machine;
    ShellRunner shell{machine.supervisor};
};

TEST_F(ShellRunnerTest, ReportsStatusAndMergedOutput) {
    const struct {
        const char* command;
        int status;
        QString output;
    } cases[] = {
        {"true", 0, {}},
        {"echo to-error >&2", 0, text("to-error\n")},
        {"echo a; echo b >&2; echo c; exit 3", 3, text("a\nb\nc\n")},
        {"cat; echo end", 0, text("end\n")},  // nothing to read, and no waiting for it
        {"printf 'a\\xff'; sleep 0.3; printf b", 0, text("b")},
        {"printf '\\xef\\xbb\\xbfx'", 0, QStringLiteral("\ufeffx")},
        {"exec >&- 2>&-; sleep 0.5; exit 4", 4, {}},  // silent long before it ends
        {"no-such-tool-anywhere 2>/dev/null", 127, {}},
    };
    for (const auto& [command, status, output] : cases) {
        SCOPED_TRACE(command);
        const CommandResult result = shell.runShellSync(text(command), 30.0);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.output, output);
    }
}

TEST_F(ShellRunnerTest, DeathByASignalIsNoSuccess) {
    EXPECT_EQ(shell.runShellSync(text("kill -9 $$"), {}).status, CommandResult::diedBySignal);
}

TEST_F(ShellRunnerTest, KeepsTheStreamsApart) {
    const QString command = text("echo a; echo b >&2; printf c; exit 3");
    const CommandResult apart = shell.runShellApart(command, {});
    EXPECT_EQ(apart.status, 3);
    EXPECT_EQ(apart.output, text("a\nc"));
    EXPECT_EQ(apart.errors, text("b\n"));

    QByteArray bytes;
    const CommandResult binary =
        shell.runShellBytes(text("printf '\\xff\\0x'; echo b >&2; sleep 60"), 1.0,
                            [&](const QByteArray& piece) { bytes += piece; });
    EXPECT_EQ(binary.status, CommandResult::timedOut);
    EXPECT_EQ(bytes, QByteArray("\xff\0x", 3));
    EXPECT_EQ(binary.errors, text("b\n"));
}

TEST_F(ShellRunnerTest, AChildHasNoTerminalAndMayKeepADescriptor) {
    const QString nobody = text(": 2>/dev/null </dev/tty && echo terminal");
    EXPECT_EQ(shell.runShellSync(nobody, 10.0).output, QString());
    const int kept = ::open(QFile::encodeName(machine.path({})).constData(), O_RDONLY | O_CLOEXEC);
    const QString open = text("[ -e /proc/self/fd/%1 ] && printf open").arg(kept);
    QString output;
    shell.runShellPassingOn(
        open, [&](const QString& piece) { output += piece; }, kept);
    EXPECT_EQ(output, text("open"));
    EXPECT_EQ(shell.runShellSync(open, {}).output, QString());
    ::close(kept);
}

// What a login profile prints, does and takes, as a command sees it.
TEST_F(ShellRunnerTest, CommandsSeeTheLoginShellsVariablesAndNothingElseOfIt) {
    ASSERT_TRUE(writeFile(machine.path(text(".bash_profile")),
                          "echo Welcome; echo news >&2; printf 'no end of line'\n"
                          "echo read >> ~/reads\n"
                          "export A=$'two\\nlines = \\'quoted\\'' EMPTY= PATH=~/bin:$PATH\n"
                          "export LATIN=$'caf\\xe9 $A'\n"
                          "export BASH_ENV=~/chatter\nunexported=1\n"
                          "trap 'echo Bye' EXIT\n"));
    ASSERT_TRUE(writeFile(machine.path(text("chatter")), "echo chatter\n"));
    const QString print = text(
        "export LC_ALL=C; env -0 | sort -z | tr '\\0\\n' '\\n|' | "
        "grep -av ^_= | sed $'s/\\xe9/<E9>/'");
    const QByteArray marked = "MARK\n" + shell.runShellSync(print, {}).output.toUtf8();
    QProcess login;
    login.start(text("/bin/bash"), {text("-lc"), text("echo; echo MARK; ") + print});
    ASSERT_TRUE(login.waitForFinished());
    QByteArray expected = login.readAllStandardOutput();
    expected = expected.mid(expected.indexOf("MARK\n"));
    expected.truncate(expected.lastIndexOf("\nBye") + 1);
    EXPECT_EQ(marked, expected);
    EXPECT_TRUE(marked.contains("\nA=two|lines = 'quoted'\n"));
    EXPECT_TRUE(marked.contains("\nLATIN=caf<E9> $A\n"));

    const CommandResult quiet = shell.runShellApart(text("true"), {});
    EXPECT_EQ(quiet.output + quiet.errors, QString());
    EXPECT_EQ(readFile(machine.path(text("reads"))), "read\nread\n");  // the other: ours
    EXPECT_EQ(shell.loginNotice(), QString());
}

TEST_F(ShellRunnerTest, AProfileThatNeverEndsOrRunsSomethingElseIsLeftOutAndNamed) {
    qputenv("REELCRATE_TEST_OWN", "own");
    for (const char* profile : {"sleep 600\n", "exec true\n", "exit 0\n", "exec cat\n"}) {
        SCOPED_TRACE(profile);
        ASSERT_TRUE(writeFile(machine.path(text(".bash_profile")), profile));
        ShellRunner own(machine.supervisor, 0.5);
        EXPECT_EQ(own.runShellSync(text("printf %s \"$REELCRATE_TEST_OWN\""), {}).output,
                  text("own"));
        EXPECT_THAT(own.loginNotice().toStdString(), testing::HasSubstr("login profile"));
    }
    qunsetenv("REELCRATE_TEST_OWN");
}

TEST_F(ShellRunnerTest, StopsAtTheTimeLimit) {
    const CommandResult silent = shell.runShellSync(text("sleep 60"), 0.2);
    EXPECT_EQ(silent.status, CommandResult::timedOut);
    EXPECT_EQ(silent.output, text("Command timed out."));

    const CommandResult talking = shell.runShellSync(text("echo so far; sleep 60"), 1.0);
    EXPECT_EQ(talking.status, CommandResult::timedOut);
    EXPECT_EQ(talking.output, text("so far\n"));
}

TEST_F(ShellRunnerTest, KillsWhatIgnoresTheRequestToTerminate) {
    const QString ids = machine.path(text("ids"));
    const CommandResult result = shell.runShellSync(
        text("trap '' TERM; sleep 60 & echo $! >> %1; echo $$ >> %1; while :; do sleep 1; done")
            .arg(ids),
        0.5);
    EXPECT_EQ(result.status, CommandResult::timedOut);
    for (pid_t process : processesIn(ids, 2))
        EXPECT_TRUE(pollUntil([&] { return !isAlive(process); }));
}

TEST_F(ShellRunnerTest, AGrandchildThatHoldsThePipeIsNotWaitedForAndEnded) {
    const QString ids = machine.path(text("ids"));
    QElapsedTimer timer;
    timer.start();
    const CommandResult result =
        shell.runShellSync(text("sleep 600 & echo $! > %1; echo done").arg(ids), {});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, text("done\n"));
    EXPECT_LT(timer.elapsed(), 300'000);  // far below the grandchild's life
    EXPECT_TRUE(pollUntil([&] { return !isAlive(processesIn(ids, 1).first()); }));
}

TEST_F(ShellRunnerTest, StreamsPiecesThatEndAtCharacters) {
    QStringList pieces;
    const CommandResult result = shell.runShellStreaming(
        text("printf 'x\\xf0\\x9f'; sleep 0.3; printf '\\x8e\\xb5'; sleep 0.3; echo y"),
        [&](const QString& piece) { pieces.append(piece); });
    const QStringList expected{text("x"), text("🎵"), text("y\n")};
    EXPECT_EQ(pieces, expected);
    EXPECT_EQ(result.output, expected.join(QString()));
}

TEST_F(ShellRunnerTest, LosesNothingOfALongOutput) {
    constexpr qsizetype size = 50'000'000;
    qsizetype streamed = 0;
    const CommandResult result =
        shell.runShellStreaming(text("head -c %1 /dev/zero | tr '\\0' x").arg(size),
                                [&](const QString& piece) { streamed += piece.size(); });
    EXPECT_EQ(result.output.size(), size);
    EXPECT_EQ(streamed, size);
}

TEST_F(ShellRunnerTest, EndingStopsWhatRunsAndStartsNothingMore) {
    const QString ids = machine.path(text("ids"));
    BackgroundTasks background;
    std::atomic<int> status = 0;
    background.run([&](const std::stop_token&) {
        status =
            shell
                .runShellStreaming(text("trap '' TERM; sleep 600 & echo $! >> %1; echo $$ >> %1; "
                                        "while :; do sleep 1; done")
                                       .arg(ids),
                                   {})
                .status;
    });
    const QList<pid_t> processes = processesIn(ids, 2);
    shell.endEverything();
    for (pid_t process : processes)
        EXPECT_FALSE(isAlive(process));
    background.join();
    EXPECT_NE(status, 0);

    const QString trace = machine.path(text("trace"));
    const CommandResult late = shell.runShellSync(text("touch %1").arg(trace), {});
    EXPECT_EQ(late.status, CommandResult::couldNotStart);
    EXPECT_FALSE(QFile::exists(trace));
}

TEST_F(ShellRunnerTest, APieceOfWorkIsStoppedAlone) {
    const QString ids = machine.path(text("ids"));
    std::stop_source work;
    ShellRunner part(shell, work.get_token());
    BackgroundTasks background;
    CommandResult stopped;
    // One child takes the request for success, its own child takes no notice of it.
    background.run([&](const std::stop_token&) {
        stopped =
            part.runShellSync(text("trap 'exit 0' TERM; (trap '' TERM; exec sleep 600) & "
                                   "echo $! >> %1; echo $$ >> %1; while :; do sleep 0.1; done")
                                  .arg(ids),
                              {});
    });
    const QList<pid_t> processes = processesIn(ids, 2);
    work.request_stop();
    background.join();
    EXPECT_EQ(stopped.status, CommandResult::stopped);
    for (pid_t process : processes)
        EXPECT_TRUE(pollUntil([&] { return !isAlive(process); }));
    EXPECT_EQ(part.runShellSync(text("true"), {}).status, CommandResult::couldNotStart);
    EXPECT_EQ(shell.runShellSync(text("true"), {}).status, 0);
}

}  // namespace
}  // namespace reelcrate
