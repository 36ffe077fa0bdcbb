import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// One entry of a row's menu; takes no room while it is hidden.
MenuItem {
    id: root

    required property string symbol

    implicitHeight: visible ? 30 : 0
    height: implicitHeight
    padding: 0
    leftPadding: 10
    rightPadding: 10
    Accessible.name: text

    contentItem: Row {
        spacing: 8
        opacity: root.enabled ? 1 : 0.6

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: root.symbol
            fontSize: 13
            color: root.enabled ? TechTheme.queueText : TechTheme.queueMuted
        }
        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            color: root.enabled ? TechTheme.queueText : TechTheme.queueMuted
            font.pixelSize: 13
            font.weight: Font.Medium
        }
    }
    background: Rectangle {
        radius: 6
        color: TechTheme.faded(TechTheme.gold, root.highlighted ? 0.35 : 0)
    }
}
