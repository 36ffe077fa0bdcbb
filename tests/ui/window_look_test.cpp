// The window as it is drawn, at its two sizes and in its three states: colours at stated points.
// With REELCRATE_SCREENSHOTS set to a folder, the pictures are kept there.

#include "theme/tech_theme.h"
#include "window_fixture.h"

#include <QDir>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace reelcrate {
namespace {

constexpr QSize preferred(1440, 1040);
constexpr QSize minimum(1080, 620);

QColor over(const QColor& below, const QColor& above) {
    const auto mix = [&](float under, float upper) {
        return under + (upper - under) * above.alphaF();
    };
    return QColor::fromRgbF(mix(below.redF(), above.redF()), mix(below.greenF(), above.greenF()),
                            mix(below.blueF(), above.blueF()));
}

class WindowLookTest : public WindowTest {
protected:
    void picture(const QSize& size, const QString& name) {
        app->window()->setMinimumSize(minimum);
        app->window()->resize(size);
        QTest::qWait(300);
        m_image = app->window()->grabWindow();
        EXPECT_EQ(m_image.size(), size);
        const QString folder = qEnvironmentVariable("REELCRATE_SCREENSHOTS");
        const QString file = u"%1-%2x%3.png"_s.arg(name).arg(size.width()).arg(size.height());
        EXPECT_TRUE(folder.isEmpty() || m_image.save(QDir(folder).filePath(file)));
    }

    /// At a place of the item, counted from its right and bottom edges where it is negative.
    QColor colorAt(const QQuickItem* item, qreal x, qreal y) const {
        const QPointF place(x < 0 ? item->width() + x : x, y < 0 ? item->height() + y : y);
        return m_image.pixelColor(item->mapToScene(place).toPoint());
    }

    static void expectNear(const QColor& seen, const QColor& expected, const char* what) {
        constexpr int tolerance = 8;  // of 255: gradients have moved on a little from their corners
        const int distance = std::max({std::abs(seen.red() - expected.red()),
                                       std::abs(seen.green() - expected.green()),
                                       std::abs(seen.blue() - expected.blue())});
        EXPECT_LE(distance, tolerance) << what << ": " << seen.name().toStdString() << ", expected "
                                       << expected.name().toStdString();
    }

    void expectBackgrounds() {
        const QQuickItem* pane = item("queuePane");
        expectNear(colorAt(pane, 3, 3), over(TechTheme::queuePaneTop, white(0.36)), "pane");
        if (isShown("emptyQueue"))  // no card's shadow falls there
            expectNear(colorAt(pane, -4, -4), over(TechTheme::queuePaneBottom, black(0.05)),
                       "pane's end");
        const QQuickItem* window = app->window()->contentItem();
        expectNear(colorAt(window, 5, -20), over(TechTheme::graphite, black(0.31)), "footer");
    }

    void expectGoldButton(const char* name, bool enabled) {
        const QQuickItem* button = item(name);
        if (!enabled) {
            EXPECT_LT(colorAt(button, 6, 8).value(), 200) << name;
            return;
        }
        expectNear(colorAt(button, 4, 6), TechTheme::actionGoldTop, name);
        expectNear(colorAt(button, -5, -7), TechTheme::actionGoldBottom, name);
    }

    /// Text that goes on from this place of the item, beside what it stands on.
    void expectReadable(const char* name, qreal x, qreal y) {
        double darkest = 1;
        for (int right = 0; right < 60; ++right) {
            for (int down = -5; down <= 5; ++down)
                darkest = std::min(darkest, luminance(colorAt(item(name), x + right, y + down)));
        }
        const double ground = luminance(colorAt(item(name), x - 3, y));
        EXPECT_GE((ground + 0.05) / (darkest + 0.05), 4.5) << name;
    }

    /// As the contrast of texts is measured by.
    static double luminance(const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    }

    void expectRow(int index, const QColor& accent, QueueStatus status, bool selected) {
        SCOPED_TRACE(index);
        const QQuickItem* card = row(index);
        if (card->mapToItem(item("queuePane"), {0, card->height()}).y() >
            item("queuePane")->height())
            return;  // reaches below the window at its least size
        const QColor tint = selected ? faded(TechTheme::gold, 0.10) : Qt::transparent;
        expectNear(colorAt(card, 30, 6), over(TechTheme::queueSurfaceTop, tint), "card");
        expectNear(colorAt(card, -16, -6), over(TechTheme::queueSurfaceBottom, tint), "card's end");
        expectNear(colorAt(card, 2, card->height() / 2), over(TechTheme::queueSurfaceTop, accent),
                   "accent bar");
        const QQuickItem* window = inRow(index, "statusWindow");
        const auto [from, to] = statusColors(status);
        expectNear(colorAt(window, 4, 13), over(TechTheme::queueSurfaceMiddle, from), "status");
        expectNear(colorAt(window, -5, -5), to, "status window's end");
    }

    static std::pair<QColor, QColor> statusColors(QueueStatus status) {
        if (status == QueueStatus::failed)
            return {rgb(1.0, 0.93, 0.86), rgb(0.94, 0.82, 0.72)};
        if (status == QueueStatus::complete)
            return {rgb(0.93, 0.98, 0.94), rgb(0.80, 0.92, 0.84)};
        return {white(0.94), rgb(0.94, 0.91, 0.84)};
    }

private:
    QImage m_image;
};

TEST_F(WindowLookTest, EmptyQueue) {
    open();
    for (const QSize& size : {preferred, minimum}) {
        picture(size, u"empty"_s);
        expectBackgrounds();
        expectGoldButton("addSongs", true);
        expectGoldButton("downloadAll", false);
    }
}

TEST_F(WindowLookTest, MixedQueue) {
    open();
    addReadRows({u"https://youtu.be/song/abcdefghijk"_s, link("broken", u"b"_s),
                 u"https://open.spotify.com/song/c"_s});
    for (const int index : {0, 1})
        controller().startDownloadRun({record(index).id});
    EXPECT_TRUE(waitForEnd());
    controller().setPastedLinks(link("slowread", u"d"_s));
    controller().addSongsFromFieldOrClipboard();
    addReadRows({link("song",
                      u"A title that is far too long for the room there is, "
                      "so that it has to be cut off somewhere"_s)});
    for (const QSize& size : {preferred, minimum}) {
        app->window()->resize(size);
        settle();
        clickRow(2);
        clickRow(0, Qt::ControlModifier);
        picture(size, u"mixed"_s);
        expectBackgrounds();
        expectGoldButton("downloadAll", true);
        expectRow(0, rgb(0.22, 0.64, 0.32), QueueStatus::complete, true);
        expectRow(1, rgb(0.80, 0.43, 0.16), QueueStatus::failed, false);
        expectRow(2, rgb(1.0, 0.70, 0.22, 0.86), QueueStatus::waiting, true);
        expectRow(3, rgb(1.0, 0.70, 0.22), QueueStatus::waiting, false);
        expectRow(4, rgb(0.78, 0.81, 0.84, 0.80), QueueStatus::waiting, false);
    }
    machine.tell(u"go-read"_s);
}

TEST_F(WindowLookTest, RunInProgress) {
    open();
    QStringList songs;
    for (int i = 1; i <= 8; ++i)
        songs.append(link("hold", u"song%1"_s.arg(i)));
    addReadRows(songs);
    click("downloadAll");
    for (const QSize& size : {preferred, minimum}) {
        picture(size, u"running"_s);
        expectBackgrounds();
        expectGoldButton("addSongs", false);
        expectGoldButton("downloadAll", false);
        expectReadable("addSongs", 58, item("addSongs")->height() / 2 - 7);
        expectReadable("addLink", 28, item("addLink")->height() / 2);
        expectRow(0, TechTheme::gold, QueueStatus::running, false);
        expectRow(2, TechTheme::gold, QueueStatus::running, false);
    }
    machine.tell(u"go"_s);
    EXPECT_TRUE(waitForEnd());
}

}  // namespace
}  // namespace reelcrate
