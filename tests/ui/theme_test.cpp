#include "theme/grid_background.h"
#include "theme/shadow.h"
#include "theme/tech_theme.h"
#include "window_fixture.h"

#include <QImage>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>

#include <gmock/gmock.h>

namespace reelcrate {
namespace {

TEST(GridTest, LinesRunFromEdgeToEdge) {
    std::vector<QLineF> lines;
    const QPainterPath path = GridBackground::gridPath({100, 50}, 44);
    for (int i = 0; i + 1 < path.elementCount(); i += 2)
        lines.emplace_back(path.elementAt(i), path.elementAt(i + 1));
    EXPECT_THAT(lines, testing::ElementsAre(QLineF(0, 0, 0, 50), QLineF(44, 0, 44, 50),
                                            QLineF(88, 0, 88, 50), QLineF(0, 0, 100, 0),
                                            QLineF(0, 44, 100, 44)));
    EXPECT_EQ(GridBackground::gridPath({88, -1}, 44).elementCount(), 6);
    EXPECT_TRUE(GridBackground::gridPath({-1, -1}, 44).isEmpty());
}

/// How dark the shadow of a shape in the middle of a picture is, at a place beside the shape.
int darkness(const QSizeF& size, double density, const QPointF& place) {
    constexpr int margin = 100;
    QImage image((size + QSizeF(2 * margin, 2 * margin)).toSize() * density,
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(density, density);
    painter.translate(margin, margin);
    paintShadow(painter, size, 10, black(1), 20, 10);
    painter.end();
    return image.pixelColor(((place + QPointF(margin, margin)) * density).toPoint()).alpha();
}

TEST(ShadowTest, IsABlurOfHalfItsRadius) {
    for (const double density : {1.0, 1.25, 2.0}) {
        for (const QSizeF& size : {QSizeF(600, 400), QSizeF(400, 300)}) {
            // Half dark at the moved edge; one deviation away, what a normal distribution leaves.
            EXPECT_NEAR(darkness(size, density, {200, 10}), 128, 12) << density;
            EXPECT_NEAR(darkness(size, density, {200, 0}), 0.159 * 255, 12) << density;
            EXPECT_NEAR(darkness(size, density, {200, 20}), 0.841 * 255, 12) << density;
            EXPECT_NEAR(darkness(size, density, {size.width() + 10, 150}), 0.159 * 255, 12);
            EXPECT_EQ(darkness(size, density, {200, -shadowReach(20)}), 0);
        }
    }
    // Too small to be stretched from a part of itself: it never gets as dark.
    EXPECT_LT(darkness({20, 20}, 1, {10, 20}), 200);
}

TEST_F(WindowTest, ProgressBarNeverLosesItsFill) {
    open();
    QQmlComponent component(qmlEngine(app->window()),
                            QUrl(u"qrc:/qt/qml/Reelcrate/Theme/RowProgressBar.qml"_s));
    const std::pair<double, double> cases[] = {{0, 8}, {-1, 8}, {0.001, 8}, {0.5, 150}, {1.5, 300}};
    for (const auto& [value, width] : cases) {
        const std::unique_ptr<QObject> bar(component.createWithInitialProperties(
            {{u"value"_s, value}, {u"tint"_s, TechTheme::gold}, {u"width"_s, 300}}));
        ASSERT_TRUE(bar) << component.errorString().toStdString();
        EXPECT_EQ(bar->property("fillWidth").toDouble(), width) << value;
    }
}

}  // namespace
}  // namespace reelcrate
