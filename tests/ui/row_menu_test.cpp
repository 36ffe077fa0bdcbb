#include "window_fixture.h"

#include <QClipboard>
#include <QGuiApplication>

namespace reelcrate {
namespace {

TEST_F(WindowTest, ARowsErrorAndLinksCanBeCopied) {
    open();
    const QString twice = link("song", u"b"_s);
    addReadRows({link("broken", u"a"_s), twice, twice});
    controller().startDownloadRun({record(0).id});
    EXPECT_TRUE(waitForEnd());
    const auto choose = [this](const char* entry) {
        click(inRow(0, "title"), Qt::RightButton);
        click(entry);
        return QGuiApplication::clipboard()->text();
    };
    EXPECT_EQ(choose("copyError"), record(0).detail);
    EXPECT_EQ(choose("copyLinks"), record(0).url);
    clickRow(0);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(choose("copyLinks"), record(0).url + u'\n' + record(1).url);
    EXPECT_EQ(choose("copyLinksInNeed"), record(0).url);
    press(Qt::Key_Return);
    EXPECT_TRUE(waitForEnd());
    EXPECT_EQ(record(1).status, QueueStatus::complete);
    EXPECT_EQ(machine.calls().count(u"download a"_s), 1) << "it was not ready";
}

TEST_F(WindowTest, TheMenuOfARowDeletesItOrTheSelection) {
    open();
    addReadRows(links("song", 5));
    clickRow(0);
    clickRow(1, Qt::ControlModifier);
    const auto chooseFrom = [this](int index) {
        click(inRow(index, "title"), Qt::RightButton);
        QString offered = text("deleteFromRow");
        click("deleteFromRow");
        return offered;
    };
    EXPECT_EQ(chooseFrom(3), u"Delete Song"_s);
    EXPECT_EQ(controller().queue().size(), 4);
    EXPECT_EQ(chooseFrom(1), u"Delete Selected Songs"_s);
    EXPECT_EQ(controller().queue().size(), 2);

    addReadRows(links("hold", 1));
    clickRow(0);
    click("downloadAll");
    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("deleteFromRow"));
    EXPECT_EQ(text("deleteFromRow"), u"Delete Song"_s) << "alone in the selection";
    EXPECT_EQ(QAccessible::queryAccessibleInterface(item("deleteFromRow"))->role(),
              QAccessible::MenuItem);
    press(Qt::Key_Escape);
    machine.tell(u"go"_s);
    EXPECT_TRUE(waitForEnd());
    click("clearQueue");
    EXPECT_TRUE(isShown("emptyQueue"));
}

TEST_F(WindowTest, TheQueuesMenuSavesThePlaylistOfWhatIsComplete) {
    open();
    clipboard = u"ABBA - SOS"_s;
    addReadRows(links("hold", 1));
    click("downloadAll");
    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("savePlaylist") || isEnabled("pasteSongList"));
    press(Qt::Key_Escape);
    machine.tell(u"go"_s);
    ASSERT_TRUE(waitForEnd());
    click(inRow(0, "title"), Qt::RightButton);
    click("savePlaylist");
    const QString folder = controller().eventFolder();
    const QByteArray playlist = readFile(folder + u'/' + playlistName(folder));
    const QString song = controller().queue().rows().first().outputPath.section(u'/', -1);
    EXPECT_TRUE(playlist.endsWith('\n' + song.toUtf8() + '\n')) << playlist.toStdString();
    EXPECT_EQ(controller().activeSummary(), u"Saved playlist of 1 song"_s);
}

TEST_F(WindowTest, TheQueuesMenuSwitchesTheTagsOfLoudness) {
    open();
    addReadRows(links("hold", 1));
    for (const bool tags : {true, false}) {
        click(inRow(0, "title"), Qt::RightButton);
        click("tagLoudness");
        EXPECT_EQ(controller().tagsLoudness(), tags);
        click(item("queueList"), Qt::RightButton);
        EXPECT_EQ(item("tagLoudness")->property("isChosen"), tags);
        EXPECT_FALSE(isShown("stopFromRow")) << "there is no row";
        press(Qt::Key_Escape);
    }
    controller().setDownloadMode(DownloadMode::video);
    click(inRow(0, "title"), Qt::RightButton);
    EXPECT_FALSE(isEnabled("tagLoudness"));
}

TEST_F(WindowTest, AMenuAtTheWindowsEdgeShowsAllItsEntries) {
    open();
    app->window()->resize(app->window()->minimumSize());
    addReadRows(links("broken", 8));
    click("downloadAll");
    EXPECT_TRUE(waitForEnd());
    const QQuickItem* list = item("queueList");
    const QRectF window(QPointF(), QSizeF(app->window()->size()));
    for (const QPointF place :
         {QPointF(list->width() - 40, list->height() - 25), QPointF(list->width() - 40, 50),
          QPointF(40, list->height() - 25)}) {
        QTest::mouseClick(app->window(), Qt::RightButton, {}, list->mapToScene(place).toPoint());
        settle();
        for (const char* name :
             {"stopFromRow", "deleteFromRow", "copyError", "copyLinks", "copyLinksInNeed",
              "pasteSongList", "savePlaylist", "tagLoudness"}) {
            SCOPED_TRACE(name);
            const QQuickItem* entry = item(name);
            ASSERT_TRUE(entry->isVisible());
            EXPECT_TRUE(window.contains(entry->mapRectToScene(entry->boundingRect())));
            const auto* label = entry->property("contentItem").value<QQuickItem*>();
            EXPECT_LT(label->childItems().last()->mapToItem(entry, QPointF()).x(), 40)
                << "it leads";
        }
        press(Qt::Key_Escape);
    }
}

}  // namespace
}  // namespace reelcrate
