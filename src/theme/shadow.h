#pragma once

#include <QColor>
#include <QSizeF>

class QPainter;

/// The soft shadow of a rounded rectangle, computed on the processor. Any thread that may paint.
namespace reelcrate {

/// How far a shadow of this radius is visible beyond what casts it.
double shadowReach(double radius);

/// Paints the shadow of a rounded rectangle that stands at the painter's origin. The radius is
/// twice the blur's standard deviation.
void paintShadow(QPainter& painter, const QSizeF& size, double cornerRadius, const QColor& color,
                 double radius, double down);

}  // namespace reelcrate
