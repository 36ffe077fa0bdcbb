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

    Q_PROPERTY(QString name MEMBER m_name WRITE setName NOTIFY changed)
    /// Of the text that the symbol goes with, in logical pixels; the symbol is a little larger.
    Q_PROPERTY(int fontSize MEMBER m_fontSize WRITE setFontSize NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color WRITE setColor NOTIFY changed)
    Q_PROPERTY(QColor colorTo MEMBER m_colorTo WRITE setColorTo NOTIFY changed)
    Q_PROPERTY(bool vertical MEMBER m_vertical WRITE setVertical NOTIFY changed)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    void setName(const QString& name) { set(m_name, name); }
    void setFontSize(int pixels);
    void setColor(const QColor& color) { set(m_color, color); }
    void setColorTo(const QColor& color) { set(m_colorTo, color); }
    void setVertical(bool vertical) { set(m_vertical, vertical); }

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
