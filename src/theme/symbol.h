#pragma once

#include "theme/canvas_item.h"

#include <QColor>
#include <QString>

/// An icon in a colour, or in a gradient of two: along the diagonal, or from the top down. Named
/// like the system symbols that the rows and records speak of. An unknown name shows nothing and
/// leaves a warning.
namespace reelcrate {

class Symbol : public reelcrate::CanvasItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    /// Of the text that the symbol goes with, in logical pixels; the symbol is a little larger.
    Q_PROPERTY(int fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QColor colorTo READ colorTo WRITE setColorTo NOTIFY colorChanged)
    Q_PROPERTY(bool vertical MEMBER m_vertical WRITE setVertical NOTIFY colorChanged)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    const QString& name() const { return m_name; }
    void setName(const QString& name);
    int fontSize() const { return m_fontSize; }
    void setFontSize(int pixels);
    const QColor& color() const { return m_color; }
    void setColor(const QColor& color);
    const QColor& colorTo() const { return m_colorTo; }
    void setColorTo(const QColor& color);
    void setVertical(bool vertical);

Q_SIGNALS:
    void nameChanged();
    void fontSizeChanged();
    void colorChanged();

protected:
    void paint(QPainter& painter, const QSizeF& size) const override;
    QByteArray look() const override;

private:
    QString m_name;
    int m_fontSize = 0;
    QColor m_color = Qt::black;
    QColor m_colorTo;
    bool m_vertical = false;
};

}  // namespace reelcrate
