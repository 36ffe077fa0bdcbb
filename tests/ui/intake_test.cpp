// By which ways links and songs come into the window.

#include "window_fixture.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

namespace reelcrate {
namespace {

TEST_F(WindowTest, LinksComeInByFieldButtonsClipboardDropAndCommandLine) {
    open({{link("song", u"first"_s)}});
    EXPECT_TRUE(waitUntil([this] { return controller().queue().size() == 1; }));

    click("linkField");
    type(link("song", u"typed"_s));
    EXPECT_EQ(controller().pastedLinks(), link("song", u"typed"_s));
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(text("linkField"), QString());

    clipboard = link("song", u"copied"_s);
    click("pasteLink");
    EXPECT_EQ(text("linkField"), clipboard);
    click("addLink");
    EXPECT_EQ(controller().queue().size(), 3);
    clipboard = link("song", u"large"_s);
    click("addSongs");
    EXPECT_EQ(controller().queue().size(), 4);

    // A list of links as a file, too; what holds none is not taken.
    const QString list = machine.path(u"list.url"_s);
    EXPECT_TRUE(writeFile(list, "[InternetShortcut]\nURL=http://site/song/shortcut\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(record(4).url, link("song", u"shortcut"_s));
    EXPECT_FALSE(WindowState::takesDrop({}, u"no link"_s));
    EXPECT_FALSE(WindowState::takesDrop({QUrl::fromLocalFile(u"/song.mp3"_s)}, {}));
    controller().editor().deleteQueueItems({record(4).id});

    // What comes by these ways leaves the field alone.
    controller().setPastedLinks(u"half a link"_s);
    drop(u"listen: %1"_s.arg(link("song", u"text"_s)), false);
    EXPECT_EQ(controller().queue().size(), 5);
    drop(link("song", u"url%20with%26more"_s), true);
    EXPECT_EQ(record(5).url, link("song", u"url%20with%26more"_s));
    EXPECT_EQ(controller().queue().size(), 6);
    clipboard = link("song", u"key"_s);
    clickRow(0);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(controller().queue().size(), 7);
    EXPECT_EQ(text("linkField"), u"half a link"_s);

    clipboard = u"http://a/1\nhttp://a/2"_s;
    click("pasteLink");
    EXPECT_EQ(text("linkField"), u"http://a/1 http://a/2"_s);
    EXPECT_EQ(controller().pastedLinks(), clipboard);
    clipboard.clear();
    click("pasteLink");
    EXPECT_EQ(text("linkField"), QString());
    EXPECT_TRUE(waitUntil([this] { return record(6).title == u"key"_s; }));
    settle();
    EXPECT_EQ(text(inRow(6, "title")), u"key"_s);
    EXPECT_EQ(text(inRow(6, "headline")), u"Ready to Download"_s);
}

TEST_F(WindowTest, ALongListInTheFieldIsShownByItsBeginningAndTakenWhole) {
    open();
    clipboard = links("song", 10'000).join(u' ');
    click("pasteLink");
    EXPECT_LT(text("linkField").size(), 400);
    click("linkField");
    type(u"more"_s);
    EXPECT_EQ(controller().pastedLinks(), clipboard);
    press(Qt::Key_Backspace);
    EXPECT_EQ(controller().pastedLinks(), QString());
    click("pasteLink");
    click("linkField");
    press(Qt::Key_Delete);
    type(u"x"_s);
    EXPECT_EQ(controller().pastedLinks(), u"x"_s);

    item("linkField")->setProperty("text", clipboard);  // as the field's own paste does
    EXPECT_LT(text("linkField").size(), 400);
    press(Qt::Key_Return);
    EXPECT_EQ(controller().queue().size(), 10'000);
    EXPECT_EQ(text("linkField"), QString());
}

TEST_F(WindowTest, SongListsComeInByMenuDropAndCommandLine) {
    const QString list = machine.path(u"list.txt"_s);
    EXPECT_TRUE(writeFile(list, "ABBA - Waterloo (2:46)\n"));
    open({.texts = {}, .lists = {list}});
    EXPECT_TRUE(waitUntil([this] { return controller().queue().size() == 1; }));
    settle();
    EXPECT_EQ(text(inRow(0, "title")), u"ABBA - Waterloo"_s);
    controller().clearQueue();
    settle();

    // The queue's menu is there without a row.
    clipboard.clear();
    click(item("emptyQueue"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("pasteSongList"));
    press(Qt::Key_Escape);
    clipboard = u"1. Queen - Bicycle Race\n2. Toto - Africa (4:55)\nhello"_s;
    click(item("emptyQueue"), Qt::RightButton);
    EXPECT_FALSE(isShown("deleteFromRow"));
    click("pasteSongList");
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(record(1).source, SourceType::song);

    // By the ways of links come links alone.
    clipboard = u"ABBA - Waterloo"_s;
    clickRow(0);
    press(Qt::Key_V, Qt::ControlModifier);
    click("addSongs");
    EXPECT_EQ(controller().queue().size(), 2);
    EXPECT_EQ(controller().activeSummary(), u"Copy a share link, then click Add Songs"_s);

    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 3);
    EXPECT_EQ(record(2).title, u"ABBA - Waterloo"_s);
    // Beside a link, nothing is read as a song.
    EXPECT_TRUE(writeFile(list, "Title,Link\nA - B,http://site/song/inside\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 4);
    EXPECT_EQ(record(3).url, link("song", u"inside"_s));

    click(inRow(1, "title"), Qt::RightButton);
    EXPECT_EQ(text("copyLinks"), u"Copy Song"_s);
    click("copyLinks");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Toto - Africa (4:55)"_s);
}

TEST_F(WindowTest, OfADropWithLinksAndSongsTheLogSaysWhatWasLeftOut) {
    open();
    const QString list = machine.path(u"list.txt"_s);
    EXPECT_TRUE(writeFile(list, "ABBA - Waterloo\nhttp://site/song/a\nToto - Africa\n"));
    drop(QUrl::fromLocalFile(list).toString(), true);
    EXPECT_EQ(controller().queue().size(), 1);
    const QString remark = u"the links were taken, and 2 lines without one left out"_s;
    EXPECT_TRUE(controller().runs().runLog().text().contains(remark));
    drop(u"http://site/song/b"_s, true);
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
        machine.tell(u"go-read"_s);
        EXPECT_TRUE(waitUntil([this] { return !record(1).isResolvingInfo; }));
        EXPECT_TRUE(waitUntil(
            [this, isStopped] { return isStopped || record(1).status == QueueStatus::complete; }));
        settle();
        EXPECT_TRUE(waitForEnd());
        EXPECT_EQ(machine.calls().count(u"download %1b"_s.arg(name)), !isStopped);
        EXPECT_TRUE(QFile::remove(machine.toolFolder() + u"/go-read"_s));
    }
    // Without a link on the command line, what is added later does not start by itself.
    for (const QStringList& texts : {QStringList(), QStringList(u"no link"_s)}) {
        open({.texts = texts, .download = true});
        addReadRows(links("song", 1));
        settle();
        EXPECT_EQ(record(0).status, QueueStatus::waiting);
    }
}

}  // namespace
}  // namespace reelcrate
