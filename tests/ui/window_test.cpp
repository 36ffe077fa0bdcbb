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
    EXPECT_EQ(text("songCount"), u"0"_s);
    EXPECT_EQ(text("activeCount"), u"0 active"_s);
    EXPECT_FALSE(isShown("selectedCount"));
    EXPECT_EQ(text("outputFolder"), machine.path(u"Desktop/Reelcrate Downloads"_s));
    EXPECT_EQ(text("summary"), controller().activeSummary());
    EXPECT_TRUE(app->hasDeleteKeyMonitor());

    click("openOutput");
    EXPECT_THAT(opened, ElementsAre(u"folder "_s + controller().outputFolder()));
    EXPECT_TRUE(QFileInfo::exists(controller().outputFolder()));
}

TEST_F(WindowTest, RowsAreSelectedByPointerAndKeyboard) {
    open();
    addReadRows(links("song", 8));
    EXPECT_FALSE(isShown("emptyQueue"));
    clickRow(1);
    EXPECT_EQ(text("selectedCount"), u"1 selected"_s);
    clickRow(4, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(1, 2, 3, 4));
    clickRow(0, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1));
    clickRow(6, Qt::ControlModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1, 6));
    EXPECT_EQ(text("selectedCount"), u"3 selected"_s);
    EXPECT_TRUE(row(6)->property("isSelected").toBool());
    EXPECT_FALSE(row(5)->property("isSelected").toBool());
    EXPECT_NE(row(6)->property("accentColor"), row(5)->property("accentColor"));

    press(Qt::Key_Up);
    EXPECT_THAT(selectedRows(), ElementsAre(5));
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(selectedRows(), ElementsAre(5, 6));
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(text("summary"), u"Selected 8 songs"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(isShown("selectedCount"));

    clickRow(2);
    press(Qt::Key_Delete);
    EXPECT_EQ(controller().queue().size(), 7);
    EXPECT_EQ(text(inRow(2, "title")), u"song4"_s);
    clickRow(2);
    press(Qt::Key_Backspace);
    EXPECT_EQ(controller().queue().size(), 6);
}

TEST_F(WindowTest, KeysInATextAreTheTexts) {
    open();
    addReadRows(links("song", 3));
    clickRow(1);
    click("eventName");
    clipboard = link("song", u"copied"_s);
    press(Qt::Key_V, Qt::ControlModifier);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    type(u"Gala"_s);
    EXPECT_EQ(controller().eventName(), u"Gala"_s);
    EXPECT_EQ(controller().queue().size(), 3);
    EXPECT_THAT(selectedRows(), ElementsAre(1));

    // A click on the queue, beside the rows too, gives the keyboard back to it.
    click("queueList");
    press(Qt::Key_Down);
    EXPECT_THAT(selectedRows(), ElementsAre(2));
    EXPECT_EQ(controller().eventName(), u"Gala"_s);
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
    machine.tell(u"go"_s);
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
    const QQuickItem* list = item("queueList");
    const int inSight =
        static_cast<int>(list->height() * 40 / list->property("contentHeight").toDouble());
    EXPECT_GT(inSight, 2);
    EXPECT_THAT(selectedRows(), ElementsAre(40 - inSight)) << "one row stays in sight";
    press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(selectedRows().size(), inSight);
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
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_FALSE(theme->keyboardLeads());
    clickRow(0);
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
    constexpr int cyrillicEf = 0x424;
    const auto keyAt = [](quint32 place, Qt::KeyboardModifiers modifiers) {
        return QKeyEvent(QEvent::KeyPress, cyrillicEf, modifiers, place, 0, 0);
    };
    for (const auto& [place, letter] : {std::pair{38, Qt::Key_A},
                                        {52, Qt::Key_Z},
                                        {53, Qt::Key_X},
                                        {54, Qt::Key_C},
                                        {55, Qt::Key_V},
                                        {60, Qt::Key_Period}}) {
        EXPECT_EQ(latinShortcutKey(keyAt(place, Qt::ControlModifier)), letter);
        EXPECT_EQ(latinShortcutKey(keyAt(place, Qt::ShiftModifier)), std::nullopt);
    }
    QKeyEvent key = keyAt(38, Qt::ControlModifier);
    QCoreApplication::sendEvent(app->window(), &key);
    EXPECT_THAT(selectedRows(), ElementsAre(0, 1, 2));
}

TEST_F(WindowTest, ARunningRowKeepsItsHeightAndTheTitleItsProgress) {
    open();
    addReadRows({link("hold", u"a"_s), link("gate", u"b"_s)});
    const auto show = [this](int index, const char* detail, double progress) {
        const_cast<QueueStore&>(controller().queue())
            .update(record(index).id, [&](DownloadItem& row) {
                row.detail = QString::fromLatin1(detail);
                row.progress = progress;
            });
        settle();
    };
    const QString title = u"99% – Reelcrate"_s;
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
    controller().stopAll();
    controller().startDownloadRun({record(1).id});
    settle();
    EXPECT_NE(app->window()->title(), title) << "from the beginning";
    for (const char* name : {"go", "go-b"})
        machine.tell(QString::fromLatin1(name));
    EXPECT_TRUE(waitForEnd());
    click("downloadAll");
    EXPECT_TRUE(waitForEnd());
    addReadRows({link("gate", u"c"_s)});
    click("downloadAll");
    EXPECT_NE(app->window()->title(), u"100% – Reelcrate"_s) << "another run's";
    machine.tell(u"go-c"_s);
    EXPECT_TRUE(waitForEnd());
}

TEST_F(WindowTest, ARunDisablesWhatMustNotHappenMeanwhile) {
    open();
    addReadRows(links("hold", 8));
    EXPECT_TRUE(isEnabled("downloadAll"));
    click("downloadAll");
    EXPECT_EQ(text("addSongs"), u"Downloading"_s);
    for (const char* name : {"addSongs", "addLink", "clearQueue", "downloadAll"}) {
        EXPECT_FALSE(isEnabled(name)) << name;
        auto* accessible = QAccessible::queryAccessibleInterface(item(name));
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    EXPECT_EQ(controller().queue().size(), 8) << "pressed by assistive technology";
    EXPECT_EQ(text("activeCount"), u"6 active"_s);
    EXPECT_TRUE(row(0)->property("isRunning").toBool());
    EXPECT_TRUE(row(0)->property("actionIsBusy").toBool());
    EXPECT_TRUE(row(6)->property("actionIsBusy").toBool());
    EXPECT_FALSE(accessibleRow(0)->actionInterface()->actionNames().contains(
        QAccessibleActionInterface::pressAction()));
    clickRow(0);
    press(Qt::Key_Delete);
    EXPECT_EQ(controller().queue().size(), 8);
    EXPECT_TRUE(app->window()->title().contains(u'%'));

    machine.tell(u"go"_s);
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(text("addSongs"), u"Add Songs"_s);
    EXPECT_TRUE(isEnabled("addSongs"));
    EXPECT_FALSE(isEnabled("downloadAll"));
    EXPECT_EQ(app->window()->title(), u"Reelcrate"_s);
    EXPECT_EQ(text("summary"), u"Download run finished"_s);
    const_cast<QueueStore&>(controller().queue()).update(record(0).id, [](DownloadItem& row) {
        row.note = u"odd"_s;
    });
    settle();
    EXPECT_EQ(text(inRow(0, "subtitle")), u"\u26A0 odd"_s);
    click(inRow(0, "action"));
    EXPECT_THAT(opened, ElementsAre(u"file "_s + record(0).outputPath));
    DownloadItem several;
    for (const QString& path : {QString(), controller().eventFolder()}) {
        several.outputPath = path;
        controller().revealOutput(several);
        EXPECT_EQ(opened.takeLast(), u"folder "_s + controller().eventFolder());
    }
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
    EXPECT_EQ(text("stopFromRow"), u"Stop Song"_s);
    click("stopFromRow");
    EXPECT_EQ(record(0).status, QueueStatus::waiting);
    EXPECT_EQ(record(6).status, QueueStatus::running);
    EXPECT_FALSE(inRow(0, "action")->isEnabled()) << "six others run";
    clickRow(0);
    clickRow(1, Qt::ControlModifier);
    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_TRUE(isEnabled("stopFromRow")) << "for the other's sake";
    press(Qt::Key_Escape);
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(item("stopFromRow")->property("highlighted").toBool());
    press(Qt::Key_Escape);
    clickRow(1);
    clickRow(2, Qt::ShiftModifier);
    press(Qt::Key_Period);
    EXPECT_EQ(record(1).status, QueueStatus::running);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(record(1).status, QueueStatus::waiting);
    EXPECT_EQ(record(2).status, QueueStatus::waiting);
    EXPECT_THAT(selectedRows(), ElementsAre(1, 2));
    EXPECT_EQ(text("summary"), u"Stopped 2 songs"_s);

    item("stopAll")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().countWithStatus(QueueStatus::waiting), 9);
    EXPECT_TRUE(waitForEnd());
    EXPECT_FALSE(isShown("stopAll"));
    EXPECT_TRUE(item("openOutput")->hasActiveFocus());
    EXPECT_EQ(text("summary"), u"Download run stopped"_s);
    EXPECT_TRUE(ends.isEmpty()) << "to announce";
    EXPECT_TRUE(inRow(0, "action")->isEnabled());
    EXPECT_EQ(app->window()->title(), u"Reelcrate"_s);

    controller().addSongs(link("slowread", u"a"_s));
    settle();
    click("stopAll");
    EXPECT_FALSE(isShown("stopAll")) << "nothing is read any more";
    machine.tell(u"go-read"_s);
}

TEST_F(WindowTest, AFailedRowIsReadOrDownloadedAgain) {
    open();
    addReadRows({link("broken", u"a"_s)});
    controller().setPastedLinks(link("unreadable", u"b"_s));
    controller().addSongsFromFieldOrClipboard();
    EXPECT_TRUE(waitUntil([this] { return record(1).status == QueueStatus::failed; }));
    click(inRow(0, "action"));
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(inRow(0, "action")->property("help"), u"Try download again"_s);
    EXPECT_EQ(inRow(1, "action")->property("help"), u"Read link again"_s);
    EXPECT_EQ(text(inRow(0, "headline")), u"Needs Attention"_s);
    EXPECT_EQ(text(inRow(0, "subtitle")), record(0).detail);

    QSignalSpy ends(&app->state().runProgress(), &RunProgress::finished);
    const qsizetype reads = machine.calls().count(u"read b"_s);
    click(inRow(1, "action"));
    EXPECT_TRUE(waitUntil([this] { return record(1).status == QueueStatus::failed; }));
    EXPECT_GT(machine.calls().count(u"read b"_s), reads);
    click(inRow(0, "action"));
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(machine.calls().count(u"download a"_s), 2);
    EXPECT_EQ(ends.value(0), (QVariantList{0, 1}));
}

TEST_F(WindowTest, SetupShowsWhatIsMissingAndIsReadyAfterwards) {
    setup.toolPlaces.systemFolders = {machine.path(u"none"_s)};
    const auto remove = [this](const char* tool) {
        return QFile::remove(machine.toolFolder() + u'/' + QLatin1String(tool));
    };
    ASSERT_TRUE(remove("yt-dlp") && remove("spotdl"));
    QTcpServer mirror;  // one that does not answer
    ASSERT_TRUE(mirror.listen(QHostAddress::LocalHost));
    setup.installerSources =
        setup.installerSources.fromMirror(u"http://127.0.0.1:%1"_s.arg(mirror.serverPort()));
    open();
    const auto pillColor = [this] { return item("setupLabel")->property("color").value<QColor>(); };
    EXPECT_EQ(text("setup"), u"Setup"_s);
    EXPECT_EQ(pillColor().rgb(), TechTheme::amber.rgb());
    EXPECT_EQ(text("setupDetail"), controller().tools().setupDetailText());
    EXPECT_FALSE(isEnabled("addSongs"));
    EXPECT_FALSE(isEnabled("addLink"));
    EXPECT_FALSE(isEnabled("downloadAll"));

    click("setup");
    EXPECT_EQ(text("setup"), u"Setting Up"_s);
    EXPECT_EQ(pillColor().rgb(), TechTheme::gold.rgb());
    click("setup");  // does nothing meanwhile
    EXPECT_TRUE(waitUntil([&] { return mirror.hasPendingConnections(); }));
    delete mirror.nextPendingConnection();
    mirror.close();
    EXPECT_TRUE(waitUntil([this] { return !app->state().controls().isSettingUp; }));
    EXPECT_EQ(pillColor().rgb(), TechTheme::amber.rgb());

    machine.install(u"yt-dlp"_s);
    controller().tools().checkTools();
    EXPECT_TRUE(waitUntil([this] { return text("setup") == u"Checking Setup"_s; }));
    EXPECT_EQ(pillColor().rgb(), TechTheme::gold.rgb());
    app->state().setUp();
    EXPECT_FALSE(controller().installer().isInstallingTools()) << "before it has been looked";
    EXPECT_TRUE(waitUntil([this] { return !app->state().controls().isSettingUp; }));
    settle();
    EXPECT_EQ(pillColor().rgb(), TechTheme::green.rgb()) << "without spotdl";
    EXPECT_TRUE(isEnabled("addSongs"));
    for (const char* tool : {"spotdl", "deno"})
        machine.installScript(QString::fromLatin1(tool), "#!/bin/bash\n");
    controller().tools().checkTools();
    EXPECT_TRUE(waitUntil([this] { return !controller().tools().isCheckingTools(); }));
    app->state().setUp();
    EXPECT_FALSE(controller().installer().isInstallingTools()) << "nothing is missing";
    EXPECT_TRUE(waitUntil([this] { return !controller().tools().isCheckingTools(); }));
}

TEST_F(WindowTest, TheFolderPickersResultIsTheOutputFolder) {
    const QString folder = setup.desktopFolder + u"/a b%20"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(QDir().mkpath(setup.desktopFolder + u"/another"_s));
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
    EXPECT_EQ(text("pickedFolder"), setup.desktopFolder) << "none is highlighted";
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    EXPECT_EQ(text("pickedFolder"), folder);
    click(withText("Up"));
    EXPECT_EQ(text("pickedFolder"), setup.desktopFolder);
    click("newFolderName");
    type(u" new"_s);
    click("newFolder");
    click(withText("Choose"));
    EXPECT_EQ(text("outputFolder"), setup.desktopFolder + u"/new"_s);
    EXPECT_TRUE(QFileInfo(text("outputFolder")).isDir());
    app->state().chooseFolder(QUrl(u"sftp://host/folder"_s));
    EXPECT_EQ(text("outputFolder"), setup.desktopFolder + u"/new"_s);
}

TEST_F(WindowTest, TheUpdateScanTellsItsOutcome) {
    QTcpServer site;  // one that does not answer at first
    ASSERT_TRUE(site.listen(QHostAddress::LocalHost));
    setup.updateScan.manifestURL = u"http://127.0.0.1:%1/"_s.arg(site.serverPort());
    setup.updateScan.timeLimit = std::chrono::seconds(1);
    open();
    EXPECT_FALSE(isShown("updateMessage"));
    click("scanForUpdate");
    EXPECT_EQ(text("scanForUpdate"), u"Checking Updates"_s);
    EXPECT_TRUE(waitUntil([&] { return site.hasPendingConnections(); }));
    delete site.nextPendingConnection();
    EXPECT_TRUE(waitUntil([this] { return text("scanForUpdate") == u"Scan for Update"_s; }));
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
    EXPECT_EQ(text("quitQuestion"), u"7 songs are unfinished."_s);
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
    addReadRows({link("song", u"a"_s)});
    click("downloadAll");
    EXPECT_TRUE(waitForEnd());
    click("logDisclosure");
    LogTail* log = app->state().runLog();
    QTextDocument* shown = log->document()->textDocument();
    QString readable = controller().runs().runLog().text();
    readable.remove(QRegularExpression(u"(?<=\n)1/1 RCR_PROGRESS:[^\n]*\n"_s));
    // The lines that are too long for a look are broken.
    const auto unbroken = [](QString log) { return log.remove(u'\n'); };
    EXPECT_EQ(unbroken(shown->toPlainText()), unbroken(readable));
    EXPECT_NE(readable, controller().runs().runLog().text()) << "the whole has the progress, too";
    const QString line = QString(150, u'x') + u'\n';
    for (int i = 0; i < 3000; ++i)
        controller().runs().appendRunLog(line + QString::number(i) + u'\n');
    EXPECT_TRUE(waitUntil([&] { return shown->toPlainText().endsWith(u"\n2999\n"_s); }));
    EXPECT_LE(shown->blockCount(), LogTail::mostLines);
    log->copyAll();
    EXPECT_EQ(QGuiApplication::clipboard()->text().size(),
              controller().runs().runLog().text().size());
    const QString file = machine.path(u"log.txt"_s);
    EXPECT_TRUE(log->save(QUrl::fromLocalFile(file)));
    EXPECT_EQ(readFile(file), controller().runs().runLog().text().toUtf8());
    controller().clearQueue();
    EXPECT_TRUE(shown->isEmpty() && log->isEmpty());
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
    EXPECT_THAT(rowNames(),
                ElementsAre(u"song1, Ready to Download, Click gold arrow to download"_s,
                            u"song2, Ready to Download, Click gold arrow to download"_s));
}

TEST_F(WindowTest, AssistiveTechnologySeesTheRowsAndPressesWhatIsEnabled) {
    open();
    addReadRows(links("song", 60));
    clickRow(0);
    press(Qt::Key_End);
    clickRow(58, Qt::ShiftModifier);
    press(Qt::Key_Delete);
    press(Qt::Key_Home);
    addReadRows({link("song", u"again"_s)});
    QStringList expected;
    for (const DownloadItem& each : controller().queue().rows())
        expected.append(rowAccessibleName(each));
    EXPECT_EQ(rowNames(), expected);
    EXPECT_TRUE(accessibleRow(0)->state().focused && accessibleRow(0)->state().selected);
    EXPECT_FALSE(accessibleRow(1)->state().focused);

    // Presses the control, and waits until it says of itself what a press makes of it.
    const auto becomes = [this](const char* name, auto isSo) {
        auto* accessible = QAccessible::queryAccessibleInterface(item(name));
        EXPECT_FALSE(isSo(accessible->state()));
        accessible->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        EXPECT_TRUE(item(name)->hasActiveFocus());
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        return waitUntil([&] { return isSo(accessible->state()); });
    };
    using State = QAccessible::State;
    EXPECT_TRUE(becomes("modeMP4", [](const State& state) { return state.checked; }));
    EXPECT_EQ(controller().downloadMode(), DownloadMode::video);
    EXPECT_TRUE(becomes("logDisclosure",
                        [](const State& state) { return state.expanded || !state.collapsed; }));
    EXPECT_TRUE(becomes("clearQueue", [](const State& state) { return state.disabled; }));
    EXPECT_EQ(controller().queue().size(), 0);
    EXPECT_THAT(rowNames(), ElementsAre());
}

TEST_F(WindowTest, AssistiveTechnologyFindsAndMovesTheKeyboardAndLosesWhatGoes) {
    open();
    addReadRows(links("song", 30));
    const auto act = [this](int index, const QString& action) {
        accessibleRow(index)->actionInterface()->doAction(action);
        settle();
    };
    EXPECT_FALSE(accessibleRow(0)->parent()->focusChild());
    act(3, QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(accessibleRow(0)->parent()->focusChild(), accessibleRow(3));
    EXPECT_THAT(selectedRows(), ElementsAre(3));
    click("eventName");
    EXPECT_FALSE(accessibleRow(0)->parent()->focusChild());
    act(5, QAccessibleActionInterface::toggleAction());
    EXPECT_THAT(selectedRows(), ElementsAre(3, 5));
    EXPECT_TRUE(accessibleRow(29)->state().offscreen && accessibleRow(29)->rect().isEmpty());
    EXPECT_FALSE(accessibleRow(0)->state().offscreen || accessibleRow(0)->rect().isEmpty());

    const DownloadItem unread = controller().addLinksToQueue({link("song", u"new"_s)}).first();
    const QAccessible::Id replaced = QAccessible::uniqueId(accessibleRow(30));
    const QAccessible::Id deleted = QAccessible::uniqueId(accessibleRow(29));
    controller().editor().deleteQueueItems({record(29).id});
    controller().resolution().applyResolution(
        {{{u"http://other"_s, unread.source, u"x"_s, {}, {}}}, {}}, unread, 29);
    EXPECT_FALSE(QAccessible::accessibleInterface(deleted));
    EXPECT_FALSE(QAccessible::accessibleInterface(replaced));
}

TEST_F(WindowTest, EveryChangeOfARowIsShown) {
    open();
    addReadRows(links("song", 1));
    const QueueListModel& rows = *app->state().rows();
    const auto look = [&rows] {
        QHash<int, QVariant> shown;
        for (const int role : rows.roleNames().keys())
            shown.insert(role, rows.data(rows.index(0), role));
        return shown;
    };
    const std::function<void(DownloadItem&)> changes[] = {
        [](DownloadItem& row) { row.title = u'x'; },
        [](DownloadItem& row) { row.duration = u'1'; },
        [](DownloadItem& row) { row.thumbnailURL = u"http://site/t.jpg"_s; },
        [](DownloadItem& row) { row.source = SourceType::spotify; },
        [](DownloadItem& row) { row.progress = 0.5; },
        [](DownloadItem& row) { row.status = QueueStatus::failed; },
        [](DownloadItem& row) { row.detail = u'x'; },
        [](DownloadItem& row) { row.status = QueueStatus::complete; },
        [](DownloadItem& row) { row.note = u'x'; },
        [](DownloadItem& row) { row.isResolvingInfo = true; },
    };
    for (const auto& change : changes) {
        QSignalSpy told(&rows, &QAbstractItemModel::dataChanged);
        QHash<int, QVariant> before = look();
        const_cast<QueueStore&>(controller().queue()).update(record(0).id, change);
        const QHash<int, QVariant> after = look();
        EXPECT_NE(before, after);
        QList<int> roles;
        for (const QVariantList& each : told)
            roles += each.at(2).value<QList<int>>();
        for (auto each = after.begin(); each != after.end(); ++each)
            EXPECT_TRUE(roles.contains(each.key()) || before.value(each.key()) == each.value())
                << rows.roleNames().value(each.key()).constData();
    }
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
    EXPECT_EQ(text("selectedCount"), u"10000 selected"_s);
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
    EXPECT_EQ(text("songCount"), u"5000"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_TRUE(row(static_cast<int>(selectedRows().front()))->isVisible());
}

}  // namespace
}  // namespace reelcrate
