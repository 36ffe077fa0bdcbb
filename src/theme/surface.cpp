#include "theme/surface.h"

#include "theme/shadow.h"

#include <QDataStream>
#include <QIODevice>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace reelcrate {

QBrush gradientBrush(const QSizeF& size, bool vertical, const QColor& from, const QColor& middle,
                     const QColor& to) {
    if (!to.isValid())
        return from;
    QLinearGradient gradient(0, 0, vertical ? 0 : size.width(), size.height());
    gradient.setColorAt(0, from);
    if (middle.isValid())
        gradient.setColorAt(0.5, middle);
    gradient.setColorAt(1, to);
    return gradient;
}

QMarginsF Surface::overflow() const {
    if (m_shadowColor.alpha() == 0)
        return {};
    const double reach = shadowReach(m_shadowRadius);
    return {reach, std::max(0.0, reach - m_shadowDown), reach, reach + m_shadowDown};
}

QByteArray Surface::look() const {
    QByteArray look;
    QDataStream stream(&look, QIODevice::WriteOnly);
    stream << m_radius << m_vertical << m_fillFrom << m_fillMiddle << m_fillTo << m_borderWidth
           << m_borderFrom << m_borderMiddle << m_borderTo << m_shadowColor << m_shadowRadius
           << m_shadowDown;
    return look;
}

void Surface::paint(QPainter& painter, const QSizeF& size) const {
    const qreal radius = std::min({m_radius, size.width() / 2, size.height() / 2});
    paintShadowOutside(painter, size, radius);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradientBrush(size, m_vertical, m_fillFrom, m_fillMiddle, m_fillTo));
    painter.drawRoundedRect(QRectF(QPointF(), size), radius, radius);

    if (m_borderFrom.alpha() == 0 && m_borderTo.alpha() == 0)
        return;
    const QBrush border = gradientBrush(size, m_vertical, m_borderFrom, m_borderMiddle, m_borderTo);
    const qreal half = m_borderWidth / 2;
    painter.setPen(QPen(border, m_borderWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(half, half, -half, -half),
                            std::max(0.0, radius - half), std::max(0.0, radius - half));
}

/// A translucent surface must not be darkened by its own shadow.
void Surface::paintShadowOutside(QPainter& painter, const QSizeF& size, qreal radius) const {
    if (m_shadowColor.alpha() == 0)
        return;
    paintShadow(painter, size, radius, m_shadowColor, m_shadowRadius, m_shadowDown);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(QPointF(), size), radius, radius);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

}  // namespace reelcrate
