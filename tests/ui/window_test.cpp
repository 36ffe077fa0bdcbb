#include "theme/tech_theme.h"
#include "window_fixture.h"

#include <QAccessible>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextDocument>

namespace reelcrate {
namespace {

using testing::ElementsAre;

TEST_F(WindowTest, AnEmptyQueueSaysSoAndOffersWhatIsPossible) {
    open();
    EXPECT_TRUE(isShown("emptyQueue"));
    EXPECT_FALSE(isEnabled("clearQueue"));
    EXPECT_FALSE(isEnabled("downloadAll"));
    EXPECT_TRUE(isEnabled("addSongs"));
    EXPECT_TRUE(isEnabled("openOutput"));
    EXPECT_EQ(text("songCount"), QStringLiteral("0"));
    EXPECT_EQ(text("activeCount"), QStringLiteral("0 active"));
    EXPECT_FALSE(isShown("selectedCount"));
    EXPECT_EQ(text("outputFolder"), machine.path(QStringLiteral("Desktop/Reelcrate Downloads")));
    EXPECT_EQ(text("summary"), controller().activeSummary());
    EXPECT_TRUE(app->hasDeleteKeyMonitor());

    click("openOutput");
    EXPECT_THAT(opened, ElementsAre(QStringLiteral("folder ") + controller().outputFolder()));
    EXPECT_TRUE(QFileInfo::exists(controller().outputFolder()));
}

TEST_F(WindowTest, RowsAreSelectedByPointerAndKeyboard) {
    open();
    addReadRows(links("song", 8));
    EXPECT_FALSE(isShown("emptyQueue"));
    clickRow(1);
    EXPECT_EQ(text("selectedCount"), QStringLiteral("1 selected"));
    clickRow(4, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1, 2, 3, 4));
    clickRow(0, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1));
    clickRow(6, Qt::ControlModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1, 6));
    EXPECT_EQ(text("selectedCount"), QStringLiteral("3 selected"));
    EXPECT_TRUE(row(6)->property("isSelected").toBool());
    EXPECT_FALSE(row(5)->property("isSelected").toBool());
    EXPECT_NE(row(6)->property("accentColor"), row(5)->property("accentColor"));

    press(Qt::Key_Up);
    EXPECT_THAT(selectedRows(), ElementsAre(5));
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(5, 6));
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(text("summary"), QStringLiteral("Selected 8 songs"));
    press(Qt::Key_Escape);
    EXPECT_FALSE(isShown("selectedCount"));

    clickRow(2);
    press(Qt::Key_Delete);
    EXPECT_EQ(controller().queue().size(), 7);
    EXPECT_EQ(text(inRow(2, "title")), QStringLiteral("song4"));
    clickRow(2);
    press(Qt::Key_Backspace);
    EXPECT_EQ(controller().queue().size(), 6);
}

TEST_F(WindowTest, KeysInATextAreTheTexts) {
    open();
    addReadRows(links("song", 3));
    clickRow(1);
    click("eventName");
    clipboard = link("song", QStringLiteral("copied"));
    press(Qt::Key_V, Qt::ControlModifier);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    type(QStringLiteral("Gala"));
    EXPECT_EQ(controller().eventName(), QStringLiteral("Gala"));
    EXPECT_EQ(controller().queue().size(), 3);
    EXPECT_THAT(selectedRows(), ElementsAre(1));

    // A click on the queue, beside the rows too, gives the keyboard back to it.
    click("queueList");
    press(Qt::Key_Down);
    EXPECT_THAT(selectedRows(), ElementsAre(2));
    EXPECT_EQ(controller().eventName(), QStringLiteral("Gala"));
}

TEST_F(WindowTest, TheKeyboardReachesEveryControlAndTheRows) {
    open();
    addReadRows(links("hold", 2));
    QStringList reached;
    for (int i = 0; i < 30; ++i) {
        press(Qt::Key_Tab);
        const QQuickItem* focused = app->window()->activeFocusItem();
        if (focused && !focused->objectName().isEmpty())
            reached.append(focused->objectName());
    }
    SCOPED_TRACE(reached.join(u' ').toStdString());
    for (const char* name : {"openOutput", "clearQueue", "downloadAll", "addSongs", "linkField",
                             "pasteLink", "addLink", "eventName", "chooseFolder", "modeMP3",
                             "modeMP4", "setup", "scanForUpdate", "queueList", "logDisclosure"})
        EXPECT_TRUE(reached.contains(QString::fromLatin1(name))) << name;

    click("modeMP4");
    EXPECT_EQ(controller().downloadMode(), DownloadMode::video);
    item("modeMP3")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_EQ(controller().downloadMode(), DownloadMode::audio);

    // A click on a row takes the keyboard from the button that had it.
    item("clearQueue")->forceActiveFocus(Qt::TabFocusReason);
    clickRow(1);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Up);
    press(Qt::Key_Return);
    EXPECT_EQ(record(0).status, QueueStatus::running);
    EXPECT_EQ(record(1).status, QueueStatus::waiting);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Return);
    EXPECT_EQ(record(1).status, QueueStatus::running) << "the ready one among them";
    machine.tell(QStringLiteral("go"));
    EXPECT_TRUE(waitForEnd());
}

TEST_F(WindowTest, TheKeyboardGoesThroughTheQueueInSteps) {
    open();
    addReadRows(links("song", 40));
    clickRow(0);
    press(Qt::Key_End);
    EXPECT_THAT(selectedRows(), ElementsAre(39));
    EXPECT_TRUE(row(39)->isVisible());
    press(Qt::Key_PageUp);
    EXPECT_THAT(selectedRows(), ElementsAre(testing::AllOf(testing::Gt(20), testing::Lt(39))));
    press(Qt::Key_Home);
    EXPECT_THAT(selectedRows(), ElementsAre(0));
    press(Qt::Key_Space);
    EXPECT_THAT(selectedRows(), ElementsAre());
    press(Qt::Key_Space);
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(item("deleteFromRow")->property("highlighted").toBool());
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().size(), 39);
}

TEST_F(WindowTest, KeysStayTheQueuesThroughEmptyAndFull) {
    open();
    addReadRows(links("song", 3));
    clickRow(0);
    for (const bool byKey : {true, false}) {
        if (byKey) {
            press(Qt::Key_A, Qt::ControlModifier);
            press(Qt::Key_Delete);
        } else {
            click("clearQueue");
        }
        EXPECT_EQ(controller().queue().size(), 0);
        addReadRows(links("song", 3));
        press(Qt::Key_Down);
        EXPECT_THAT(selectedRows(), ElementsAre(0));
    }
}

TEST_F(WindowTest, OnlyTheKeyboardsWaysShowWhereItIs) {
    open();
    addReadRows(links("song", 3));
    const auto* theme =
        qmlEngine(app->window())
            ->singletonInstance<TechTheme*>(qmlTypeId("Reelcrate.Theme", 1, 0, "TechTheme"));
    clickRow(0);
    EXPECT_FALSE(theme->keyboardLeads());
    click(inRow(0, "title"), Qt::RightButton);
    press(Qt::Key_Escape);
    EXPECT_TRUE(item("queueList")->hasActiveFocus());
    EXPECT_FALSE(theme->keyboardLeads());
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    EXPECT_TRUE(theme->keyboardLeads());
    clickRow(1);
    EXPECT_FALSE(theme->keyboardLeads());
}

TEST_F(WindowTest, ShortcutsWorkWithoutLatinLetters) {
    open();
    addReadRows(links("song", 3));
    clickRow(0);
    constexpr quint32 placeOfPeriod = 60;
    constexpr int cyrillicYu = 0x42e;
    QKeyEvent period(QEvent::KeyPress, cyrillicYu, Qt::ControlModifier, placeOfPeriod, 0, 0);
    EXPECT_EQ(latinShortcutKey(period), Qt::Key_Period);
    constexpr quint32 placeOfA = 38;
    constexpr int cyrillicEf = 0x424;
    QKeyEvent key(QEvent::KeyPress, cyrillicEf, Qt::ControlModifier, placeOfA, 0, 0);
    QCoreApplication::sendEvent(app->window(), &key);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1, 2));
}

TEST_F(WindowTest, ARunningRowKeepsItsHeightAndTheTitleItsProgress) {
    open();
    addReadRows({link("hold", QStringLiteral("a")), link("gate", QStringLiteral("b"))});
    const auto show = [this](int index, const char* detail, double progress) {
        const_cast<QueueStore&>(controller().queue())
            .update(record(index).id, [&](DownloadItem& row) {
                row.detail = QString::fromLatin1(detail);
                row.progress = progress;
            });
        settle();
    };
    const QString title = QStringLiteral("99% – Reelcrate");
    controller().startDownloadRun({record(0).id});
    settle();
    const double height = row(0)->height();
    EXPECT_GT(height, 80);
    for (const char* detail : {"Downloading Song", "Something of its own", ""}) {
        show(0, detail, 0.999);
        EXPECT_EQ(row(0)->height(), height) << detail;
    }
    EXPECT_EQ(app->window()->title(), title);
    controller().startDownloadRun({record(1).id});
    settle();
    EXPECT_EQ(app->window()->title(), title) << "it never goes back";
    controller().stopQueueItems({record(0).id});
    show(1, "", 0.5);
    EXPECT_EQ(app->window()->title(), title) << "what is stopped counts no more";
    for (const char* name : {"go", "go-b"})
        machine.tell(QString::fromLatin1(name));
    EXPECT_TRUE(waitForEnd());
    click("downloadAll");
    EXPECT_TRUE(waitForEnd());
    addReadRows({link("gate", QStringLiteral("c"))});
    click("downloadAll");
    EXPECT_NE(app->window()->title(), QStringLiteral("100% – Reelcrate")) << "another run's";
    machine.tell(QStringLiteral("go-c"));
    EXPECT_TRUE(waitForEnd());
}

TEST_F(WindowTest, ARunDisablesWhatMustNotHappenMeanwhile) {
    open();
    addReadRows(links("hold", 8));
    EXPECT_TRUE(isEnabled("downloadAll"));
    click("downloadAll");
    EXPECT_EQ(text("addSongs"), QStringLiteral("Downloading"));
    for (const char* name : {"addSongs", "addLink", "clearQueue", "downloadAll"}) {
        EXPECT_FALSE(isEnabled(name)) << name;
        auto* accessible = QAccessible::queryAccessibleInterface(item(name));
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    EXPECT_EQ(controller().queue().size(), 8) << "pressed by assistive technology";
    EXPECT_EQ(text("activeCount"), QStringLiteral("6 active"));
    EXPECT_TRUE(row(0)->property("isRunning").toBool());
    EXPECT_TRUE(row(0)->property("actionIsBusy").toBool());
    EXPECT_TRUE(row(6)->property("actionIsBusy").toBool());
    EXPECT_FALSE(accessibleRow(0)->actionInterface()->actionNames().contains(
        QAccessibleActionInterface::pressAction()));
    clickRow(0);
    press(Qt::Key_Delete);
    EXPECT_EQ(controller().queue().size(), 8);
    EXPECT_TRUE(app->window()->title().contains(u'%'));

    machine.tell(QStringLiteral("go"));
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(text("addSongs"), QStringLiteral("Add Songs"));
    EXPECT_TRUE(isEnabled("addSongs"));
    EXPECT_FALSE(isEnabled("downloadAll"));
    EXPECT_EQ(app->window()->title(), QStringLiteral("Reelcrate"));
    EXPECT_EQ(text("summary"), QStringLiteral("Download run finished"));
    const_cast<QueueStore&>(controller().queue()).update(record(0).id, [](DownloadItem& row) {
        row.note = QStringLiteral("odd");
    });
    settle();
    EXPECT_EQ(text(inRow(0, "subtitle")), QStringLiteral("\u26A0 odd"));
    click(inRow(0, "action"));
    EXPECT_THAT(opened, ElementsAre(QStringLiteral("file ") + record(0).outputPath));
}

TEST_F(WindowTest, WhatGoesOnIsStoppedByMenuKeyAndButton) {
    open();
    addReadRows(links("hold", 9));
    EXPECT_FALSE(isShown("stopAll"));
    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("stopFromRow"));
    press(Qt::Key_Escape);
    QSignalSpy ends(&app->state().runProgress(), &RunProgress::finished);
    click("downloadAll");
    EXPECT_TRUE(isShown("stopAll"));

    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_EQ(text("stopFromRow"), QStringLiteral("Stop Song"));
    click("stopFromRow");
    EXPECT_EQ(record(0).status, QueueStatus::waiting);
    EXPECT_EQ(record(6).status, QueueStatus::running);
    clickRow(1);
    clickRow(2, Qt::ShiftModifier);
    press(Qt::Key_Period);
    EXPECT_EQ(record(1).status, QueueStatus::running);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(record(1).status, QueueStatus::waiting);
    EXPECT_EQ(record(2).status, QueueStatus::waiting);
    EXPECT_THAT(selectedRows(), ElementsAre(1, 2));
    EXPECT_EQ(text("summary"), QStringLiteral("Stopped 2 songs"));

    item("stopAll")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().countWithStatus(QueueStatus::waiting), 9);
    EXPECT_TRUE(waitForEnd());
    EXPECT_FALSE(isShown("stopAll"));
    EXPECT_TRUE(item("openOutput")->hasActiveFocus());
    EXPECT_EQ(text("summary"), QStringLiteral("Download run stopped"));
    EXPECT_TRUE(ends.isEmpty()) << "to announce";
    EXPECT_EQ(app->window()->title(), QStringLiteral("Reelcrate"));

    controller().addSongs(link("slowread", QStringLiteral("a")));
    settle();
    click("stopAll");
    EXPECT_FALSE(isShown("stopAll")) << "nothing is read any more";
    machine.tell(QStringLiteral("go-read"));
}

TEST_F(WindowTest, AFailedRowIsReadOrDownloadedAgain) {
    open();
    addReadRows({link("broken", QStringLiteral("a"))});
    controller().setPastedLinks(link("unreadable", QStringLiteral("b")));
    controller().addSongsFromFieldOrClipboard();
    EXPECT_TRUE(waitUntil([this] { return record(1).status == QueueStatus::failed; }));
    click(inRow(0, "action"));
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(inRow(0, "action")->property("help"), QStringLiteral("Try download again"));
    EXPECT_EQ(inRow(1, "action")->property("help"), QStringLiteral("Read link again"));
    EXPECT_EQ(text(inRow(0, "headline")), QStringLiteral("Needs Attention"));
    EXPECT_EQ(text(inRow(0, "subtitle")), record(0).detail);

    const qsizetype reads = machine.calls().count(QStringLiteral("read b"));
    click(inRow(1, "action"));
    EXPECT_TRUE(waitUntil([this] { return record(1).status == QueueStatus::failed; }));
    EXPECT_GT(machine.calls().count(QStringLiteral("read b")), reads);
    click(inRow(0, "action"));
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(machine.calls().count(QStringLiteral("download a")), 2);
}

TEST_F(WindowTest, SetupShowsWhatIsMissingAndIsReadyAfterwards) {
    setup.toolPlaces.systemFolders = {machine.path(QStringLiteral("none"))};
    const auto remove = [this](const char* tool) {
        return QFile::remove(machine.toolFolder() + u'/' + QLatin1String(tool));
    };
    ASSERT_TRUE(remove("yt-dlp") && remove("spotdl"));
    QTcpServer mirror;  // one that does not answer
    ASSERT_TRUE(mirror.listen(QHostAddress::LocalHost));
    setup.installerSources = setup.installerSources.fromMirror(
        QStringLiteral("http://127.0.0.1:%1").arg(mirror.serverPort()));
    open();
    const auto pillColor = [this] { return item("setupLabel")->property("color").value<QColor>(); };
    EXPECT_EQ(text("setup"), QStringLiteral("Setup"));
    EXPECT_EQ(pillColor().rgb(), TechTheme::amber.rgb());
    EXPECT_EQ(text("setupDetail"), controller().tools().setupDetailText());
    EXPECT_FALSE(isEnabled("addSongs"));
    EXPECT_FALSE(isEnabled("addLink"));
    EXPECT_FALSE(isEnabled("downloadAll"));

    click("setup");
    EXPECT_EQ(text("setup"), QStringLiteral("Setting Up"));
    EXPECT_EQ(pillColor().rgb(), TechTheme::gold.rgb());
    click("setup");  // does nothing meanwhile
    EXPECT_TRUE(waitUntil([&] { return mirror.hasPendingConnections(); }));
    delete mirror.nextPendingConnection();
    mirror.close();
    EXPECT_TRUE(waitUntil([this] { return !app->state().controls().isSettingUp; }));
    EXPECT_EQ(pillColor().rgb(), TechTheme::amber.rgb());

    machine.install(QStringLiteral("yt-dlp"));
    controller().tools().checkTools();
    EXPECT_TRUE(waitUntil([this] { return text("setup") == QStringLiteral("Checking Setup"); }));
    EXPECT_EQ(pillColor().rgb(), TechTheme::gold.rgb());
    EXPECT_TRUE(waitUntil([this] { return !app->state().controls().isSettingUp; }));
    settle();
    EXPECT_EQ(pillColor().rgb(), TechTheme::green.rgb()) << "without spotdl";
    EXPECT_TRUE(isEnabled("addSongs"));
}

TEST_F(WindowTest, TheFolderPickersResultIsTheOutputFolder) {
    const QString folder = setup.desktopFolder + QStringLiteral("/a b%20");
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(QDir().mkpath(setup.desktopFolder + QStringLiteral("/another")));
    open();
    click("chooseFolder");
    EXPECT_TRUE(app->window()->property("popupIsOpen").toBool());
    EXPECT_TRUE(withText("Choose Output Location"));
    EXPECT_TRUE(waitUntil([&] { return item("folders")->property("count") == 2; }));
    EXPECT_EQ(text("pickedFolder"), setup.desktopFolder);
    press(Qt::Key_Down);
    EXPECT_EQ(text("pickedFolder"), folder) << "what is highlighted is what is chosen";
    click(withText("Choose"));
    EXPECT_EQ(text("outputFolder"), folder);
    click("chooseFolder");
    click(withText("Cancel"));
    EXPECT_EQ(text("outputFolder"), folder);
    click("chooseFolder");
    click("newFolderName");
    type(QStringLiteral(" new"));
    click("newFolder");
    click(withText("Choose"));
    EXPECT_EQ(text("outputFolder"), setup.desktopFolder + QStringLiteral("/new"));
    EXPECT_TRUE(QFileInfo(text("outputFolder")).isDir());
    app->state().chooseFolder(QUrl(QStringLiteral("sftp://host/folder")));
    EXPECT_EQ(text("outputFolder"), setup.desktopFolder + QStringLiteral("/new"));
}

TEST_F(WindowTest, TheUpdateScanTellsItsOutcome) {
    QTcpServer site;  // one that does not answer at first
    ASSERT_TRUE(site.listen(QHostAddress::LocalHost));
    setup.updateScan.manifestURL = QStringLiteral("http://127.0.0.1:%1/").arg(site.serverPort());
    setup.updateScan.timeLimit = std::chrono::seconds(1);
    open();
    EXPECT_FALSE(isShown("updateMessage"));
    click("scanForUpdate");
    EXPECT_EQ(text("scanForUpdate"), QStringLiteral("Checking Updates"));
    EXPECT_TRUE(waitUntil([&] { return site.hasPendingConnections(); }));
    delete site.nextPendingConnection();
    EXPECT_TRUE(
        waitUntil([this] { return text("scanForUpdate") == QStringLiteral("Scan for Update"); }));
    EXPECT_TRUE(isShown("updateMessage"));
    EXPECT_EQ(text("updateMessage"), controller().update().updateMessage());
}

TEST_F(WindowTest, ClosingOnUnfinishedSongsAsksOnce) {
    open();
    addReadRows(links("hold", 7));
    clickRow(0);
    click("downloadAll");
    app->window()->close();
    settle();
    EXPECT_TRUE(app->window()->isVisible());
    EXPECT_EQ(text("quitQuestion"), QStringLiteral("7 songs are unfinished."));
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(0)) << "keys belong to the question";
    click("keepDownloading");
    EXPECT_EQ(controller().activeQueueDownloadCount(), 6);
    app->window()->close();
    settle();
    click("quit");
    EXPECT_FALSE(app->window()->isVisible());
    EXPECT_FALSE(app->hasDeleteKeyMonitor());
}

TEST_F(WindowTest, LogsShowTheirEndAndGiveAllOfIt) {
    open();
    addReadRows({link("song", QStringLiteral("a"))});
    click("downloadAll");
    EXPECT_TRUE(waitForEnd());
    click("logDisclosure");
    LogTail* log = app->state().runLog();
    QTextDocument* shown = log->document()->textDocument();
    QString readable = controller().runs().runLog().text();
    readable.remove(QRegularExpression(QStringLiteral("(?<=\n)1/1 RCR_PROGRESS:[^\n]*\n")));
    // The lines that are too long for a look are broken.
    const auto unbroken = [](QString log) { return log.remove(u'\n'); };
    EXPECT_EQ(unbroken(shown->toPlainText()), unbroken(readable));
    EXPECT_NE(readable, controller().runs().runLog().text()) << "the whole has the progress, too";
    const QString line = QString(150, u'x') + u'\n';
    for (int i = 0; i < 3000; ++i)
        controller().runs().appendRunLog(line + QString::number(i) + u'\n');
    EXPECT_TRUE(
        waitUntil([&] { return shown->toPlainText().endsWith(QStringLiteral("\n2999\n")); }));
    EXPECT_LE(shown->blockCount(), LogTail::mostLines);
    log->copyAll();
    EXPECT_EQ(QGuiApplication::clipboard()->text().size(),
              controller().runs().runLog().text().size());
    controller().clearQueue();
    EXPECT_TRUE(shown->isEmpty());
}

TEST_F(WindowTest, EveryControlHasARoleAndAName) {
    open();
    addReadRows(links("song", 2));
    click("logDisclosure");
    int seen = 0;
    const std::function<void(QAccessibleInterface*)> look = [&](QAccessibleInterface* each) {
        if (each->state().invisible)
            return;
        if (each->state().focusable || each->role() == QAccessible::Button ||
            each->role() == QAccessible::ListItem) {
            ++seen;
            EXPECT_FALSE(each->text(QAccessible::Name).isEmpty())
                << each->role() << " "
                << (each->object() ? each->object()->metaObject()->className() : "");
            EXPECT_NE(each->role(), QAccessible::NoRole);
        }
        for (int i = 0; i < each->childCount(); ++i)
            look(each->child(i));
    };
    look(QAccessible::queryAccessibleInterface(app->window()));
    EXPECT_GE(seen, 17);
    EXPECT_THAT(
        rowNames(),
        ElementsAre(QStringLiteral("song1, Ready to Download, Click gold arrow to download"),
                    QStringLiteral("song2, Ready to Download, Click gold arrow to download")));
}

TEST_F(WindowTest, AssistiveTechnologySeesTheRowsAndPressesWhatIsEnabled) {
    open();
    addReadRows(links("song", 60));
    clickRow(0);
    press(Qt::Key_End);
    clickRow(58, Qt::ShiftModifier);
    press(Qt::Key_Delete);
    press(Qt::Key_Home);
    addReadRows({link("song", QStringLiteral("again"))});
    QStringList expected;
    for (const DownloadItem& each : controller().queue().rows())
        expected.append(rowAccessibleName(each));
    EXPECT_EQ(rowNames(), expected);
    EXPECT_TRUE(accessibleRow(0)->state().focused && accessibleRow(0)->state().selected);
    EXPECT_FALSE(accessibleRow(1)->state().focused);

    // Presses the control, and waits until it says of itself what a press makes of it.
    const auto becomes = [this](const char* name, auto isSo) {
        auto* accessible = QAccessible::queryAccessibleInterface(item(name));
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        return waitUntil([&] { return isSo(accessible->state()); });
    };
    using State = QAccessible::State;
    EXPECT_TRUE(becomes("modeMP4", [](const State& state) { return state.checked; }));
    EXPECT_EQ(controller().downloadMode(), DownloadMode::video);
    EXPECT_TRUE(becomes("logDisclosure", [](const State& state) { return state.expanded; }));
    EXPECT_TRUE(becomes("clearQueue", [](const State& state) { return state.disabled; }));
    EXPECT_EQ(controller().queue().size(), 0);
    EXPECT_THAT(rowNames(), ElementsAre());
}

TEST_F(WindowTest, TenThousandRowsComeGoAndFollowTheKeyboard) {
    open();
    controller().addLinksToQueue(links("song", 10'000));
    settle();
    press(Qt::Key_Down);  // without the keyboard's attention: nothing
    EXPECT_TRUE(controller().editor().selection().ids.isEmpty());
    click("songCount");  // the queue, beside its rows
    press(Qt::Key_Up);
    EXPECT_THAT(selectedRows(), ElementsAre(9999));
    EXPECT_TRUE(row(9999)->isVisible());
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(text("selectedCount"), QStringLiteral("10000 selected"));
    auto* list = item("queueList");
    const double place = list->property("contentY").toDouble();
    QSet<QUuid> odd;
    for (qsizetype i = 1; i < 10'000; i += 2)
        odd.insert(record(i).id);
    controller().editor().deleteQueueItems(odd);
    settle();
    EXPECT_NEAR(list->property("contentY").toDouble(), place / 2, 1000) << "the same rows in sight";
    settle();
    EXPECT_EQ(app->state().rows()->rowCount(), 5000);
    EXPECT_EQ(text("songCount"), QStringLiteral("5000"));
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_TRUE(row(static_cast<int>(selectedRows().front()))->isVisible());
}

}  // namespace
}  // namespace reelcrate
