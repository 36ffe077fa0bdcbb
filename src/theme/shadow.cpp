#include "theme/shadow.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace reelcrate {

namespace {

constexpr double deviationsShown = 3;

double deviation(double radius) {
    return radius / 2;
}

/// Of a normal distribution, from its middle outwards; the whole adds up to one.
std::vector<float> halfKernel(double deviation) {
    const auto reach = static_cast<std::size_t>(std::ceil(deviationsShown * deviation));
    std::vector<float> weights(reach + 1);
    float sum = 0;
    for (std::size_t i = 0; i <= reach; ++i) {
        const double distance = static_cast<double>(i) / deviation;
        weights[i] = static_cast<float>(std::exp(-distance * distance / 2));
        sum += i == 0 ? weights[i] : 2 * weights[i];
    }
    for (float& weight : weights)
        weight /= sum;
    return weights;
}

/// Blurs along the lines and gives the result turned, so that twice is both ways.
QImage blurredAndTurned(const QImage& alpha, const std::vector<float>& half) {
    const int reach = static_cast<int>(half.size()) - 1;
    QImage result(alpha.height(), alpha.width(), QImage::Format_Alpha8);
    for (int y = 0; y < alpha.height(); ++y) {
        const uchar* line = alpha.constScanLine(y);
        for (int x = 0; x < alpha.width(); ++x) {
            float sum = 0;
            const int first = std::max(-reach, -x);
            const int last = std::min(reach, alpha.width() - 1 - x);
            for (int i = first; i <= last; ++i)
                sum +=
                    half[static_cast<std::size_t>(std::abs(i))] * static_cast<float>(line[x + i]);
            result.scanLine(x)[y] = static_cast<uchar>(std::lround(sum));
        }
    }
    return result;
}

/// The blurred shape in its colour, `margin` pixels larger on each side.
QImage shadowImage(const QSize& size, double cornerRadius, double deviation, int margin,
                   const QColor& color) {
    QImage alpha(size + QSize(2 * margin, 2 * margin), QImage::Format_Alpha8);
    alpha.fill(0);
    {
        QPainter painter(&alpha);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(QPointF(margin, margin), QSizeF(size)), cornerRadius,
                                cornerRadius);
    }
    const std::vector<float> half = halfKernel(deviation);
    const QImage blurred = blurredAndTurned(blurredAndTurned(alpha, half), half);
    QImage colored(blurred.size(), QImage::Format_ARGB32_Premultiplied);
    colored.fill(color);
    QPainter painter(&colored);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, blurred);
    return colored;
}

/// Where a length of the image is cut in three, and where the pieces go.
struct Cut {
    std::array<int, 4> from;
    std::array<int, 4> to;

    /// The middle pixel of an image that is shorter than what it stands for is stretched.
    Cut(int imageLength, int shownLength)
        : from{0, imageLength / 2, imageLength - imageLength / 2, imageLength},
          to{0, imageLength / 2, shownLength - imageLength / 2, shownLength} {}
};

void drawStretched(QPainter& painter, const QImage& image, const QSize& shown) {
    const Cut columns(image.width(), shown.width());
    const Cut rows(image.height(), shown.height());
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t x = 0; x < 3; ++x) {
            const QRect source(QPoint(columns.from[x], rows.from[y]),
                               QPoint(columns.from[x + 1] - 1, rows.from[y + 1] - 1));
            const QRect target(QPoint(columns.to[x], rows.to[y]),
                               QPoint(columns.to[x + 1] - 1, rows.to[y + 1] - 1));
            if (!source.isEmpty() && !target.isEmpty())
                painter.drawImage(target, image, source);
        }
    }
}

}  // namespace

double shadowReach(double radius) {
    return std::ceil(deviationsShown * deviation(radius)) + 1;
}

void paintShadow(QPainter& painter, const QSizeF& size, double cornerRadius, const QColor& color,
                 double radius, double down) {
    if (color.alpha() == 0 || radius <= 0)
        return;
    // In device pixels: a shadow may be stretched only along whole ones.
    const double density = painter.transform().m11();
    const double blur = deviation(radius) * density;
    const double corner = cornerRadius * density;
    const int margin = static_cast<int>(std::ceil(deviationsShown * blur));
    const QSize whole(static_cast<int>(std::lround(size.width() * density)),
                      static_cast<int>(std::lround(size.height() * density)));
    // Beyond corner and blur a side looks the same all along, so a small image shows it all. Odd
    // lengths have a middle pixel to stretch.
    const int enough = 2 * (static_cast<int>(std::ceil(corner)) + 2 * margin) + 1;
    const QSize small(std::min(whole.width(), enough), std::min(whole.height(), enough));
    const QImage image = shadowImage(small, corner, blur, margin, color);

    painter.save();
    const QPointF origin = painter.transform().map(QPointF(0, down));
    painter.resetTransform();
    painter.translate(std::round(origin.x()) - margin, std::round(origin.y()) - margin);
    drawStretched(painter, image, whole + QSize(2 * margin, 2 * margin));
    painter.restore();
}

}  // namespace reelcrate
