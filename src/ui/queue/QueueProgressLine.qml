import QtQuick
import Reelcrate.Theme

/// How far a running row is.
Item {
    id: root

    required property real value
    required property string text

    implicitHeight: percentage.implicitHeight

    RowProgressBar {
        anchors.verticalCenter: parent.verticalCenter
        width: root.width - 68
        value: root.value
        tint: TechTheme.gold
    }
    MonospacedDigits {
        id: percentage

        anchors.right: parent.right
        text: root.text
    }
}
