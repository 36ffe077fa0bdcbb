#include "theme/symbol.h"

#include "theme/surface.h"

#include <QDataStream>
#include <QFile>
#include <QHash>
#include <QIODevice>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>
#include <memory>

namespace reelcrate {

namespace {

/// The icon that stands for a symbol, of the set but for one; CMakeLists.txt embeds them.
QString iconName(const QString& symbol) {
    static const QHash<QString, QString> icons{
        {QStringLiteral("arrow.clockwise"), QStringLiteral("arrow-clockwise")},
        {QStringLiteral("arrow.down"), QStringLiteral("arrow-down")},
        {QStringLiteral("arrow.down.circle.fill"), QStringLiteral("arrow-down-circle-fill")},
        {QStringLiteral("arrow.triangle.2.circlepath"), QStringLiteral("arrow-repeat")},
        {QStringLiteral("bolt.fill"), QStringLiteral("lightning-fill")},
        {QStringLiteral("checkmark.circle.fill"), QStringLiteral("check-circle-fill")},
        {QStringLiteral("chevron.down"), QStringLiteral("chevron-down")},
        {QStringLiteral("chevron.right"), QStringLiteral("chevron-right")},
        {QStringLiteral("clock.fill"), QStringLiteral("clock-fill")},
        {QStringLiteral("doc.on.clipboard"), QStringLiteral("clipboard")},
        {QStringLiteral("doc.on.doc"), QStringLiteral("files")},
        {QStringLiteral("exclamationmark.triangle.fill"),
         QStringLiteral("exclamation-triangle-fill")},
        {QStringLiteral("folder"), QStringLiteral("folder")},
        {QStringLiteral("link"), QStringLiteral("link-45deg")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("search")},
        {QStringLiteral("music.note"), QStringLiteral("music-note")},
        {QStringLiteral("music.note.list"), QStringLiteral("music-note-list")},
        {QStringLiteral("person.2.fill"), QStringLiteral("people-fill")},
        {QStringLiteral("play.rectangle.fill"), QStringLiteral("play-btn-fill")},
        {QStringLiteral("plus.circle.fill"), QStringLiteral("plus-circle-fill")},
        {QStringLiteral("speaker.wave.2.fill"), QStringLiteral("volume-up-fill")},
        {QStringLiteral("square.and.arrow.down"), QStringLiteral("save")},
        {QStringLiteral("stop.fill"), QStringLiteral("stop-fill")},
        {QStringLiteral("trash"), QStringLiteral("trash")},
        {QStringLiteral("tray.and.arrow.down.fill"), QStringLiteral("tray-arrow-down-fill")},
        {QStringLiteral("wrench.and.screwdriver"), QStringLiteral("tools")},
        {QStringLiteral("wrench.and.screwdriver.fill"), QStringLiteral("tools")},
    };
    return icons.value(symbol);
}

/// The set has one weight, whose outlines are thin beside bold text: a line along them makes up for
/// it. Filled shapes are heavy enough, and would lose what is cut out of them.
QByteArray emboldened(const QString& icon, QByteArray svg) {
    if (icon.endsWith(QStringLiteral("-fill")))
        return svg;
    return svg.replace("fill=\"currentColor\"",
                       "fill=\"black\" stroke=\"black\" stroke-width=\"0.45\"");
}

QSvgRenderer* renderer(const QString& symbol) {
    static QHash<QString, std::shared_ptr<QSvgRenderer>> renderers;
    auto& renderer = renderers[symbol];
    if (!renderer) {
        const QString icon = iconName(symbol);
        QFile file(QStringLiteral(":/reelcrate/symbols/%1.svg").arg(icon));
        if (!file.open(QIODevice::ReadOnly))
            qWarning("There is no symbol named '%s'.", qUtf8Printable(symbol));
        renderer = std::make_shared<QSvgRenderer>(emboldened(icon, file.readAll()));
    }
    return renderer.get();
}

}  // namespace

Symbol::Symbol(QQuickItem* parent) : CanvasItem(parent) {
    constexpr int calloutSize = 12;
    setFontSize(calloutSize);
}

void Symbol::setFontSize(int pixels) {
    constexpr double symbolToFont = 1.1;
    const double side = std::round(pixels * symbolToFont);
    setImplicitSize(side, side);
    set(m_fontSize, pixels);
}

QByteArray Symbol::look() const {
    QByteArray look;
    QDataStream stream(&look, QIODevice::WriteOnly);
    stream << m_name << m_color << m_colorTo << m_vertical;
    return look;
}

void Symbol::paint(QPainter& painter, const QSizeF& size) const {
    if (m_name.isEmpty())
        return;
    const QRectF box(QPointF(), size);
    renderer(m_name)->render(&painter, box);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(box, gradientBrush(size, m_vertical, m_color, QColor(), m_colorTo));
}

}  // namespace reelcrate
