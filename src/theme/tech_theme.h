#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

/// The palette, the shadows of surfaces and the sizes of text: every colour of the window but
/// those that a row's state chooses. Constants for any thread; the window reads them from the QML
/// singleton TechTheme.
namespace reelcrate {

/// Colours of sRGB components with an opacity, each 0 to 1.
inline QColor rgb(double red, double green, double blue, double opacity = 1) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue), static_cast<float>(opacity));
}
inline QColor white(double opacity) {
    return rgb(1, 1, 1, opacity);
}
inline QColor black(double opacity) {
    return rgb(0, 0, 0, opacity);
}
inline QColor faded(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

/// How high a surface floats.
namespace SurfaceDepth {
Q_NAMESPACE
QML_ELEMENT
enum Value { Low, Medium, High };
Q_ENUM_NS(Value)
}  // namespace SurfaceDepth

/// A blur of standard deviation radius / 2 below what casts it.
class SurfaceShadow {
    Q_GADGET
    QML_VALUE_TYPE(surfaceShadow)
    Q_PROPERTY(QColor color MEMBER color CONSTANT)
    Q_PROPERTY(qreal radius MEMBER radius CONSTANT)
    Q_PROPERTY(qreal down MEMBER down CONSTANT)

public:
    QColor color;
    qreal radius = 0;
    qreal down = 0;
};

class TechTheme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QColor ink MEMBER ink CONSTANT)
    Q_PROPERTY(QColor graphite MEMBER graphite CONSTANT)
    Q_PROPERTY(QColor cobalt MEMBER cobalt CONSTANT)
    Q_PROPERTY(QColor deepTeal MEMBER deepTeal CONSTANT)
    Q_PROPERTY(QColor gold MEMBER gold CONSTANT)
    Q_PROPERTY(QColor goldTop MEMBER goldTop CONSTANT)
    Q_PROPERTY(QColor goldBottom MEMBER goldBottom CONSTANT)
    Q_PROPERTY(QColor bronze MEMBER bronze CONSTANT)
    Q_PROPERTY(QColor text MEMBER text CONSTANT)
    Q_PROPERTY(QColor muted MEMBER muted CONSTANT)
    Q_PROPERTY(QColor dimmed MEMBER dimmed CONSTANT)
    Q_PROPERTY(QColor panelTop MEMBER panelTop CONSTANT)
    Q_PROPERTY(QColor panelBottom MEMBER panelBottom CONSTANT)
    Q_PROPERTY(QColor fieldTop MEMBER fieldTop CONSTANT)
    Q_PROPERTY(QColor fieldBottom MEMBER fieldBottom CONSTANT)
    Q_PROPERTY(QColor glassStroke MEMBER glassStroke CONSTANT)
    Q_PROPERTY(QColor queueText MEMBER queueText CONSTANT)
    Q_PROPERTY(QColor queueMuted MEMBER queueMuted CONSTANT)
    Q_PROPERTY(QColor queueLine MEMBER queueLine CONSTANT)
    Q_PROPERTY(QColor queueInset MEMBER queueInset CONSTANT)
    Q_PROPERTY(QColor queuePaneTop MEMBER queuePaneTop CONSTANT)
    Q_PROPERTY(QColor queuePaneMiddle MEMBER queuePaneMiddle CONSTANT)
    Q_PROPERTY(QColor queuePaneBottom MEMBER queuePaneBottom CONSTANT)
    Q_PROPERTY(QColor queueSurfaceTop MEMBER queueSurfaceTop CONSTANT)
    Q_PROPERTY(QColor queueSurfaceMiddle MEMBER queueSurfaceMiddle CONSTANT)
    Q_PROPERTY(QColor queueSurfaceBottom MEMBER queueSurfaceBottom CONSTANT)
    Q_PROPERTY(QColor ember MEMBER ember CONSTANT)
    Q_PROPERTY(QColor actionGoldTop MEMBER actionGoldTop CONSTANT)
    Q_PROPERTY(QColor actionGoldBottom MEMBER actionGoldBottom CONSTANT)
    Q_PROPERTY(QColor pressedGoldTop MEMBER pressedGoldTop CONSTANT)
    Q_PROPERTY(QColor pressedGoldBottom MEMBER pressedGoldBottom CONSTANT)
    Q_PROPERTY(QColor pressedDownloadBottom MEMBER pressedDownloadBottom CONSTANT)
    Q_PROPERTY(QColor lightBottom MEMBER lightBottom CONSTANT)
    Q_PROPERTY(QColor pressedLightTop MEMBER pressedLightTop CONSTANT)
    Q_PROPERTY(QColor pressedLightBottom MEMBER pressedLightBottom CONSTANT)
    Q_PROPERTY(QColor chipBottom MEMBER chipBottom CONSTANT)
    Q_PROPERTY(QColor badgeBottom MEMBER badgeBottom CONSTANT)
    Q_PROPERTY(QColor trayIcon MEMBER trayIcon CONSTANT)
    Q_PROPERTY(QColor green MEMBER green CONSTANT)
    Q_PROPERTY(QColor orange MEMBER orange CONSTANT)

    Q_PROPERTY(int title3 MEMBER title3 CONSTANT)
    Q_PROPERTY(int headline MEMBER headline CONSTANT)
    Q_PROPERTY(int callout MEMBER callout CONSTANT)
    Q_PROPERTY(int caption MEMBER caption CONSTANT)
    Q_PROPERTY(int caption2 MEMBER caption2 CONSTANT)

    /// False where the desktop asks for reduced motion: nothing turns or slides then.
    Q_PROPERTY(bool animated READ animated WRITE setAnimated NOTIFY animatedChanged)
    /// Whether the user goes about by keyboard, and so wants to see where it is.
    Q_PROPERTY(
        bool keyboardLeads READ keyboardLeads WRITE setKeyboardLeads NOTIFY keyboardLeadsChanged)

public:
    explicit TechTheme(QObject* parent = nullptr) : QObject(parent) {}

    static inline const QColor ink = rgb(0.025, 0.035, 0.052);
    static inline const QColor graphite = rgb(0.075, 0.086, 0.105);
    static inline const QColor cobalt = rgb(0.045, 0.195, 0.365);
    static inline const QColor deepTeal = rgb(0.03, 0.105, 0.12);
    static inline const QColor gold = rgb(1.0, 0.70, 0.22);
    /// The gradient of gold buttons, chips and the chosen mode.
    static inline const QColor goldTop = rgb(1.0, 0.83, 0.34);
    static inline const QColor goldBottom = rgb(0.95, 0.58, 0.11);
    /// What gold ends in where it is shaded.
    static inline const QColor bronze = rgb(0.52, 0.35, 0.08);
    static inline const QColor text = rgb(0.93, 0.96, 0.98);
    static inline const QColor muted = rgb(0.58, 0.66, 0.73);
    static inline const QColor dimmed = rgb(0.39, 0.47, 0.55);
    static inline const QColor panelTop = reelcrate::white(0.13);
    static inline const QColor panelBottom = reelcrate::white(0.055);
    static inline const QColor fieldTop = reelcrate::white(0.16);
    static inline const QColor fieldBottom = reelcrate::white(0.075);
    static inline const QColor glassStroke = reelcrate::white(0.18);
    static inline const QColor queueText = rgb(0.08, 0.11, 0.15);
    static inline const QColor queueMuted = rgb(0.35, 0.42, 0.49);
    static inline const QColor queueLine = rgb(0.64, 0.68, 0.72);
    static inline const QColor queueInset = rgb(0.78, 0.81, 0.84);

    /// Three even stops each, from the top-leading to the bottom-trailing corner.
    static inline const QColor queuePaneTop = rgb(0.965, 0.972, 0.978);
    static inline const QColor queuePaneMiddle = rgb(0.915, 0.93, 0.943);
    static inline const QColor queuePaneBottom = rgb(0.855, 0.878, 0.895);
    static inline const QColor queueSurfaceTop = rgb(0.997, 0.998, 1.0);
    static inline const QColor queueSurfaceMiddle = rgb(0.958, 0.968, 0.978);
    static inline const QColor queueSurfaceBottom = rgb(0.90, 0.918, 0.935);

    /// Where the progress bar's gold ends.
    static inline const QColor ember = rgb(0.92, 0.54, 0.10);

    // Fills of the buttons, from their top-left to their bottom-right corner.
    static inline const QColor actionGoldTop = rgb(1.0, 0.82, 0.32);
    static inline const QColor actionGoldBottom = rgb(0.95, 0.56, 0.10);
    static inline const QColor pressedGoldTop = rgb(0.88, 0.59, 0.18);
    static inline const QColor pressedGoldBottom = rgb(0.78, 0.39, 0.08);
    static inline const QColor pressedDownloadBottom = rgb(0.76, 0.41, 0.08);
    static inline const QColor lightBottom = rgb(0.88, 0.91, 0.93);
    static inline const QColor pressedLightTop = rgb(0.82, 0.85, 0.88);
    static inline const QColor pressedLightBottom = rgb(0.75, 0.79, 0.82);

    /// Where the fills of a plain chip and of the header's badge end; the empty queue's tray.
    static inline const QColor chipBottom = rgb(0.85, 0.88, 0.91);
    static inline const QColor badgeBottom = rgb(0.46, 0.29, 0.07);
    static inline const QColor trayIcon = rgb(0.58, 0.38, 0.08);

    /// Something is missing.
    static inline const QColor amber = rgb(0.88, 0.52, 0.15);
    /// The standard signals for good and for attention.
    static inline const QColor green = rgb(0.204, 0.78, 0.349);
    static inline const QColor orange = rgb(1.0, 0.584, 0.0);
    /// The same as text on light cards, dark enough to be read.
    static inline const QColor queueGreen = rgb(0.10, 0.47, 0.21);
    static inline const QColor queueOrange = rgb(0.70, 0.28, 0.0);

    // Text sizes, in logical pixels.
    static constexpr int title3 = 15;
    static constexpr int headline = 13;
    static constexpr int callout = 12;
    static constexpr int caption = 10;
    static constexpr int caption2 = 10;

    /// The shadows under dark panels and under light cards.
    Q_INVOKABLE static reelcrate::SurfaceShadow techShadow(reelcrate::SurfaceDepth::Value depth);
    Q_INVOKABLE static reelcrate::SurfaceShadow queueShadow(reelcrate::SurfaceDepth::Value depth);

    /// The colour with another opacity.
    Q_INVOKABLE static QColor faded(const QColor& color, double opacity) {
        return reelcrate::faded(color, opacity);
    }
    Q_INVOKABLE static QColor white(double opacity) { return reelcrate::white(opacity); }
    Q_INVOKABLE static QColor black(double opacity) { return reelcrate::black(opacity); }

    bool animated() const { return m_animated; }
    bool keyboardLeads() const { return m_keyboardLeads; }
    void setAnimated(bool animated);
    void setKeyboardLeads(bool leads);

Q_SIGNALS:
    void animatedChanged();
    void keyboardLeadsChanged();

private:
    bool m_animated = true;
    bool m_keyboardLeads = false;
};

}  // namespace reelcrate
