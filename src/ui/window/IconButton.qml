import QtQuick
import Reelcrate.Theme

/// A borderless button of one symbol.
ThemedButton {
    id: root

    implicitWidth: 28
    implicitHeight: 28
    padding: 0
    symbolSize: 14

    background: Rectangle {
        radius: root.cornerRadius
        color: TechTheme.white(root.down ? 0.16 : root.hovered ? 0.09 : 0)
    }
}
