import QtQuick
import Reelcrate.Theme

/// An entry of a row's menu that is on or off, and shows which at its end.
RowMenuItem {
    id: root

    required property bool isChosen

    indicator: Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 26
        implicitHeight: 14
        radius: 7
        color: root.isChosen ? TechTheme.goldBottom : TechTheme.queueInset
        opacity: root.enabled ? 1 : 0.6

        Rectangle {
            x: root.isChosen ? 14 : 2
            y: 2
            width: 10
            height: 10
            radius: 5
            color: TechTheme.white(1)
        }
    }
}
