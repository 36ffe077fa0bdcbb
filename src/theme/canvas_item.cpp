#include "theme/canvas_item.h"

#include <QCache>
#include <QDataStream>
#include <QIODevice>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>

namespace reelcrate {

namespace {

constexpr qsizetype sharedBytes = 24 << 20;
/// A background of a whole window is shown once: sharing it would only crowd out the rest.
constexpr qsizetype largestSharedBytes = 3 << 20;

/// Of whole device pixels, so that the image is shown pixel by pixel.
QSize pixelSize(const QRectF& area, qreal density) {
    return {static_cast<int>(std::ceil(area.width() * density)),
            static_cast<int>(std::ceil(area.height() * density))};
}

}  // namespace

CanvasItem::CanvasItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void CanvasItem::repaint() {
    m_isOutdated = true;
    update();
}

void CanvasItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        repaint();
}

void CanvasItem::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged)
        repaint();
}

QSGNode* CanvasItem::updatePaintNode(QSGNode* former, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(former);
    if (width() <= 0 || height() <= 0) {
        delete node;
        return nullptr;
    }
    if (node && !m_isOutdated)
        return node;
    const qreal density = window()->effectiveDevicePixelRatio();
    const QRectF area = boundingRect().marginsAdded(overflow());
    const QImage shown = sharedImage(area, density);
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
    }
    node->setTexture(window()->createTextureFromImage(shown));
    node->setRect(QRectF(area.topLeft(), QSizeF(shown.size()) / density));
    m_isOutdated = false;
    return node;
}

QImage CanvasItem::image(const QRectF& area, qreal density) const {
    QImage image(pixelSize(area, density), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(density, density);
    painter.translate(-area.topLeft());
    paint(painter, size());
    return image;
}

QImage CanvasItem::sharedImage(const QRectF& area, qreal density) const {
    // Only one thread at a time renders while the main thread waits for it.
    static QCache<QByteArray, QImage> images(sharedBytes);
    QByteArray key;
    QDataStream stream(&key, QIODevice::WriteOnly);
    stream << metaObject()->className() << size() << density << look();
    if (const QImage* known = images.object(key))
        return *known;
    QImage painted = image(area, density);
    if (painted.sizeInBytes() <= largestSharedBytes)
        images.insert(key, new QImage(painted), painted.sizeInBytes());
    return painted;
}

}  // namespace reelcrate
