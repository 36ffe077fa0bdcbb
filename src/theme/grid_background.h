#pragma once

#include "theme/surface.h"

#include <QPainterPath>

/// The two backgrounds: a gradient with two grids, two diagonal glints and a shade over it.
namespace reelcrate {

class GridBackground : public reelcrate::Surface {
    Q_OBJECT
    QML_ANONYMOUS

public:
    struct Glint {
        QPointF from;  ///< as fractions of width and height
        QPointF to;
    };
    struct Look {
        double spacing = 0;
        QColor fine;
        QColor coarse;  ///< of the grid that is four times as wide
        Glint glints[2];
        QColor glintColors[2];
        QColor shade[3];  ///< from the top down; the middle one is optional
    };

    /// Lines from edge to edge at every multiple of the spacing that is within the size.
    static QPainterPath gridPath(const QSizeF& size, double spacing);

protected:
    GridBackground(const Look& look, QQuickItem* parent) : Surface(parent), m_look(look) {}
    void paint(QPainter& painter, const QSizeF& size) const override;

private:
    const Look& m_look;
};

/// Of the whole window, dark.
class TechBackgroundView : public reelcrate::GridBackground {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit TechBackgroundView(QQuickItem* parent = nullptr);
};

/// Of the queue, light.
class QueueBackgroundView : public reelcrate::GridBackground {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit QueueBackgroundView(QQuickItem* parent = nullptr);
};

}  // namespace reelcrate
