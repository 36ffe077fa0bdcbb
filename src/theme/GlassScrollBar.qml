import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// A slim scroll bar in one colour.
ScrollBar {
    id: root

    property color tint: TechTheme.muted

    implicitWidth: 10
    padding: 2
    // Of a long list the handle would be a dot.
    minimumSize: Math.min(1, 28 / Math.max(1, availableHeight))
    Accessible.ignored: true
    contentItem: Rectangle {
        radius: 3
        color: root.tint
        opacity: root.size >= 1 ? 0 : root.pressed ? 0.8 : root.hovered ? 0.6 : 0.4
    }
}
