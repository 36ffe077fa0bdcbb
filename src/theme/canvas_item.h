#pragma once

#include <QByteArray>
#include <QMarginsF>
#include <QQuickItem>

class QPainter;

/// An item of the scene that is painted once into an image, sharp at the window's pixel density,
/// and shown from there, with or without a GPU. Items that look the same share the image.
/// Painting runs while the main thread waits for the render thread; it reads the item's properties
/// and nothing else. (The bases of QML types are written with their namespace, for the tools that
/// describe the types to the linter.)
namespace reelcrate {

class CanvasItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

Q_SIGNALS:
    /// Any property that decides the look.
    void changed();

protected:
    explicit CanvasItem(QQuickItem* parent = nullptr);

    /// In the item's own coordinates, from (0, 0) to `size`; `overflow` more is visible around it.
    virtual void paint(QPainter& painter, const QSizeF& size) const = 0;
    virtual QMarginsF overflow() const { return {}; }

    /// What tells this item's look from others of its class, but for the size.
    virtual QByteArray look() const = 0;

    /// Gives a property of the look its value.
    template <typename Value>
    void set(Value& member, const Value& value) {
        if (member == value)
            return;
        member = value;
        repaint();
        Q_EMIT changed();
    }

    QSGNode* updatePaintNode(QSGNode* former, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void repaint();
    QImage image(const QRectF& area, qreal density) const;
    QImage sharedImage(const QRectF& area, qreal density) const;

    bool m_isOutdated = true;
};

}  // namespace reelcrate
