#include "theme/grid_background.h"

#include "theme/tech_theme.h"

#include <QLinearGradient>
#include <QPainter>

namespace reelcrate {

namespace {

constexpr int coarseFactor = 4;

const GridBackground::Look& techLook() {
    static const GridBackground::Look look{
        .spacing = 44,
        .fine = white(0.035),
        .coarse = white(0.05),
        .glints = {{{0.18, 0}, {0.64, 1}}, {{0.58, 0}, {0.96, 0.70}}},
        .glintColors = {faded(TechTheme::gold, 0.18), white(0.08)},
        .shade = {black(0), QColor(), black(0.32)}};
    return look;
}

const GridBackground::Look& queueLook() {
    static const GridBackground::Look look{
        .spacing = 48,
        .fine = faded(TechTheme::queueLine, 0.13),
        .coarse = white(0.44),
        .glints = {{{0.10, 0}, {0.40, 1}}, {{0.70, 0}, {1, 0.72}}},
        .glintColors = {faded(TechTheme::gold, 0.13), white(0.24)},
        .shade = {white(0.36), black(0), black(0.05)}};
    return look;
}

QPointF at(const QPointF& fraction, const QSizeF& size) {
    return {fraction.x() * size.width(), fraction.y() * size.height()};
}

void paintGlint(QPainter& painter, const GridBackground::Look& look, const QPointF& from,
                const QPointF& to) {
    QLinearGradient gradient(from, to);
    gradient.setColorAt(0, faded(look.glintColors[0], 0));
    gradient.setColorAt(1.0 / 3, look.glintColors[0]);
    gradient.setColorAt(2.0 / 3, look.glintColors[1]);
    gradient.setColorAt(1, faded(look.glintColors[1], 0));
    painter.setPen(QPen(gradient, 2));
    painter.drawLine(from, to);
}

}  // namespace

QPainterPath GridBackground::gridPath(const QSizeF& size, double spacing) {
    QPainterPath path;
    if (spacing <= 0)
        return path;
    for (int i = 0; i * spacing <= size.width(); ++i) {
        path.moveTo(i * spacing, 0);
        path.lineTo(i * spacing, size.height());
    }
    for (int i = 0; i * spacing <= size.height(); ++i) {
        path.moveTo(0, i * spacing);
        path.lineTo(size.width(), i * spacing);
    }
    return path;
}

void GridBackground::paint(QPainter& painter, const QSizeF& size) const {
    Surface::paint(painter, size);
    painter.setClipRect(QRectF(QPointF(), size));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(m_look.fine, 1));
    painter.drawPath(gridPath(size, m_look.spacing));
    painter.setPen(QPen(m_look.coarse, 1));
    painter.drawPath(gridPath(size, m_look.spacing * coarseFactor));
    for (const Glint& glint : m_look.glints)
        paintGlint(painter, m_look, at(glint.from, size), at(glint.to, size));
    painter.fillRect(QRectF(QPointF(), size),
                     gradientBrush(size, true, m_look.shade[0], m_look.shade[1], m_look.shade[2]));
}

TechBackgroundView::TechBackgroundView(QQuickItem* parent) : GridBackground(techLook(), parent) {}

QueueBackgroundView::QueueBackgroundView(QQuickItem* parent)
    : GridBackground(queueLook(), parent) {}

}  // namespace reelcrate
