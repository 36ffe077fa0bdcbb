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

    rotation: turning.angle

    Turning {
        id: turning

        running: root.isSpinning && root.visible && TechTheme.animated
    }
}
