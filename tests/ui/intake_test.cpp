// By which ways links and songs come into the window.

#include "window_fixture.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

namespace reelcrate {
namespace {

TEST_F(WindowTest, LinksComeInByFieldButtonsClipboardDropAndCommandLine) {
    open({{link("song", QStringLiteral("first"))}});
    EXPECT_TRUE(waitUntil([this] { return controller().queue().size() == 1; }));

    click("linkField");
    type(link("song", QStringLiteral("typed")));
    EXPECT_EQ(controller().pastedLinks(), link("song", QStringLiteral("typed")));
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(text("linkField"), QString());

    clipboard = link("song", QStringLiteral("copied"));
    click("pasteLink");
    EXPECT_EQ(text("linkField"), clipboard);
    click("addLink");
    EXPECT_EQ(controller().queue().size(), 3);
    clipboard = link("song", QStringLiteral("large"));
    click("addSongs");
    EXPECT_EQ(controller().queue().size(), 4);

    // A list of links as a file, too; what holds none is not taken.
    const QString list = machine.path(QStringLiteral("list.url"));
    EXPECT_TRUE(writeFile(list, "[InternetShortcut]\nURL=http://site/song/shortcut\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(record(4).url, link("song", QStringLiteral("shortcut")));
    EXPECT_FALSE(WindowState::takesDrop({}, QStringLiteral("no link")));
    EXPECT_FALSE(WindowState::takesDrop({QUrl::fromLocalFile(QStringLiteral("/song.mp3"))}, {}));
    controller().editor().deleteQueueItems({record(4).id});

    // What comes by these ways leaves the field alone.
    controller().setPastedLinks(QStringLiteral("half a link"));
    drop(QStringLiteral("listen: %1").arg(link("song", QStringLiteral("text"))), false);
    EXPECT_EQ(controller().queue().size(), 5);
    drop(link("song", QStringLiteral("url%20with%26more")), true);
    EXPECT_EQ(record(5).url, link("song", QStringLiteral("url%20with%26more")));
    EXPECT_EQ(controller().queue().size(), 6);
    clipboard = link("song", QStringLiteral("key"));
    clickRow(0);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(controller().queue().size(), 7);
    EXPECT_EQ(text("linkField"), QStringLiteral("half a link"));

    clipboard = QStringLiteral("http://a/1\nhttp://a/2");
    click("pasteLink");
    EXPECT_EQ(text("linkField"), QStringLiteral("http://a/1 http://a/2"));
    EXPECT_EQ(controller().pastedLinks(), clipboard);
    clipboard.clear();
    click("pasteLink");
    EXPECT_EQ(text("linkField"), QString());
    EXPECT_TRUE(waitUntil([this] { return record(6).title == QStringLiteral("key"); }));
    settle();
    EXPECT_EQ(text(inRow(6, "title")), QStringLiteral("key"));
    EXPECT_EQ(text(inRow(6, "headline")), QStringLiteral("Ready to Download"));
}

TEST_F(WindowTest, ALongListInTheFieldIsShownByItsBeginningAndTakenWhole) {
    open();
    clipboard = links("song", 10'000).join(u' ');
    click("pasteLink");
    EXPECT_LT(text("linkField").size(), 400);
    click("linkField");
    type(QStringLiteral("more"));
    EXPECT_EQ(controller().pastedLinks(), clipboard);
    press(Qt::Key_Backspace);
    EXPECT_EQ(controller().pastedLinks(), QString());
    type(QStringLiteral("x"));
    EXPECT_EQ(controller().pastedLinks(), QStringLiteral("x"));

    item("linkField")->setProperty("text", clipboard);  // as the field's own paste does
    EXPECT_LT(text("linkField").size(), 400);
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().size(), 10'000);
    EXPECT_EQ(text("linkField"), QString());
}

TEST_F(WindowTest, SongListsComeInByMenuDropAndCommandLine) {
    const QString list = machine.path(QStringLiteral("list.txt"));
    EXPECT_TRUE(writeFile(list, "ABBA - Waterloo (2:46)\n"));
    open({.texts = {}, .lists = {list}});
    EXPECT_TRUE(waitUntil([this] { return controller().queue().size() == 1; }));
    settle();
    EXPECT_EQ(text(inRow(0, "title")), QStringLiteral("ABBA - Waterloo"));
    controller().clearQueue();
    settle();

    // The queue's menu is there without a row.
    clipboard.clear();
    click(item("emptyQueue"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("pasteSongList"));
    press(Qt::Key_Escape);
    clipboard = QStringLiteral("1. Queen - Bicycle Race\n2. Toto - Africa (4:55)\nhello");
    click(item("emptyQueue"), Qt::RightButton);
    EXPECT_FALSE(isShown("deleteFromRow"));
    click("pasteSongList");
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(record(1).source, SourceType::song);

    // By the ways of links come links alone.
    clipboard = QStringLiteral("ABBA - Waterloo");
    clickRow(0);
    press(Qt::Key_V, Qt::ControlModifier);
    click("addSongs");
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(controller().activeSummary(),
              QStringLiteral("Copy a share link, then click Add Songs"));

    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 3);
    EXPECT_EQ(record(2).title, QStringLiteral("ABBA - Waterloo"));
    // Beside a link, nothing is read as a song.
    EXPECT_TRUE(writeFile(list, "Title,Link\nA - B,http://site/song/inside\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 4);
    EXPECT_EQ(record(3).url, link("song", QStringLiteral("inside")));

    click(inRow(1, "title"), Qt::RightButton);
    EXPECT_EQ(text("copyLinks"), QStringLiteral("Copy Song"));
    click("copyLinks");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Toto - Africa (4:55)"));
}

TEST_F(WindowTest, OfADropWithLinksAndSongsTheLogSaysWhatWasLeftOut) {
    open();
    const QString list = machine.path(QStringLiteral("list.txt"));
    EXPECT_TRUE(writeFile(list, "ABBA - Waterloo\nhttp://site/song/a\nToto - Africa\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 1);
    const QString remark = QStringLiteral("the links were taken, and 2 lines without one left out");
    EXPECT_TRUE(controller().runs().runLog().text().contains(remark));
    drop(QStringLiteral("http://site/song/b"), true);
    EXPECT_EQ(controller().runs().runLog().text().count(remark), 1);
}

TEST_F(WindowTest, LinksOfTheCommandLineAreDownloadedUnlessOneIsStopped) {
    for (const bool isStopped : {false, true}) {
        SCOPED_TRACE(isStopped);
        const QString name = QString::number(int{isStopped});
        open({.texts = {link("slowread", name), link("song", name + u'b')}, .download = true});
        EXPECT_TRUE(waitUntil([this] { return controller().queue().size() == 2; }));
        if (isStopped)
            controller().stopQueueItems({record(0).id});
        machine.tell(QStringLiteral("go-read"));
        EXPECT_TRUE(waitUntil([this] { return !record(1).isResolvingInfo; }));
        EXPECT_TRUE(waitUntil(
            [this, isStopped] { return isStopped || record(1).status == QueueStatus::complete; }));
        settle();
        EXPECT_TRUE(waitForEnd());
        EXPECT_EQ(machine.calls().count(QStringLiteral("download %1b").arg(name)), !isStopped);
        EXPECT_TRUE(QFile::remove(machine.toolFolder() + QStringLiteral("/go-read")));
    }
}

}  // namespace
}  // namespace reelcrate
