#pragma once

#include "theme/canvas_item.h"

#include <QBrush>
#include <QColor>

/// A rounded rectangle with a gradient, a border that may be one too, and a soft shadow outside of
/// it. Gradients run from the top-left to the bottom-right corner, or from the top down; the middle
/// colour is optional. A border lies inside the shape.
namespace reelcrate {

class Surface : public reelcrate::CanvasItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(qreal radius MEMBER m_radius WRITE setRadius NOTIFY changed)
    Q_PROPERTY(bool vertical MEMBER m_vertical WRITE setVertical NOTIFY changed)
    Q_PROPERTY(QColor fillFrom MEMBER m_fillFrom WRITE setFillFrom NOTIFY changed)
    Q_PROPERTY(QColor fillMiddle MEMBER m_fillMiddle WRITE setFillMiddle NOTIFY changed)
    Q_PROPERTY(QColor fillTo MEMBER m_fillTo WRITE setFillTo NOTIFY changed)
    Q_PROPERTY(qreal borderWidth MEMBER m_borderWidth WRITE setBorderWidth NOTIFY changed)
    Q_PROPERTY(QColor borderFrom MEMBER m_borderFrom WRITE setBorderFrom NOTIFY changed)
    Q_PROPERTY(QColor borderMiddle MEMBER m_borderMiddle WRITE setBorderMiddle NOTIFY changed)
    Q_PROPERTY(QColor borderTo MEMBER m_borderTo WRITE setBorderTo NOTIFY changed)
    Q_PROPERTY(QColor shadowColor MEMBER m_shadowColor WRITE setShadowColor NOTIFY changed)
    Q_PROPERTY(qreal shadowRadius MEMBER m_shadowRadius WRITE setShadowRadius NOTIFY changed)
    Q_PROPERTY(qreal shadowDown MEMBER m_shadowDown WRITE setShadowDown NOTIFY changed)

public:
    explicit Surface(QQuickItem* parent = nullptr) : CanvasItem(parent) {}

    void setRadius(qreal radius) { set(m_radius, radius); }
    void setVertical(bool vertical) { set(m_vertical, vertical); }
    void setFillFrom(const QColor& color) { set(m_fillFrom, color); }
    void setFillMiddle(const QColor& color) { set(m_fillMiddle, color); }
    void setFillTo(const QColor& color) { set(m_fillTo, color); }
    void setBorderWidth(qreal width) { set(m_borderWidth, width); }
    void setBorderFrom(const QColor& color) { set(m_borderFrom, color); }
    void setBorderMiddle(const QColor& color) { set(m_borderMiddle, color); }
    void setBorderTo(const QColor& color) { set(m_borderTo, color); }
    void setShadowColor(const QColor& color) { set(m_shadowColor, color); }
    void setShadowRadius(qreal radius) { set(m_shadowRadius, radius); }
    void setShadowDown(qreal down) { set(m_shadowDown, down); }

protected:
    void paint(QPainter& painter, const QSizeF& size) const override;
    QMarginsF overflow() const override;
    QByteArray look() const override;

private:
    void paintShadowOutside(QPainter& painter, const QSizeF& size, qreal radius) const;

    qreal m_radius = 0;
    bool m_vertical = false;
    QColor m_fillFrom = Qt::transparent;
    QColor m_fillMiddle;
    QColor m_fillTo;  ///< not set: the same as where it begins
    qreal m_borderWidth = 1;
    QColor m_borderFrom = Qt::transparent;
    QColor m_borderMiddle;
    QColor m_borderTo;
    QColor m_shadowColor = Qt::transparent;
    qreal m_shadowRadius = 0;
    qreal m_shadowDown = 0;
};

/// A gradient over a rectangle of this size, along its diagonal or from the top down.
QBrush gradientBrush(const QSizeF& size, bool vertical, const QColor& from, const QColor& middle,
                     const QColor& to);

}  // namespace reelcrate
