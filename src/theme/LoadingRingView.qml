import QtQuick
import Reelcrate.Theme

/// A ring that turns, once in 0.8 seconds, for as long as it is shown.
Symbol {
    id: root

    property bool isSpinning: false

    name: "arrow.triangle.2.circlepath"
    fontSize: 15
    color: TechTheme.gold
    colorTo: TechTheme.bronze
    Component.onCompleted: isSpinning = true

    // Moved by the render thread: the main thread has nothing to do for it.
    RotationAnimator on rotation {
        from: 0
        to: 360
        duration: 800
        loops: Animation.Infinite
        running: root.isSpinning && root.visible && TechTheme.animated
    }
}
