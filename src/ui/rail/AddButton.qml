import QtQuick
import Reelcrate.Theme

/// The large golden button.
LargeActionButton {
    id: root

    objectName: "addSongs"
    Accessible.description: "Uses copied share link"

    contentItem: Item {
        implicitHeight: 34

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "plus.circle.fill"
            fontSize: 26
            color: root.labelColor
        }
        Column {
            anchors.verticalCenter: parent.verticalCenter
            x: 42
            spacing: 2

            PlainText {
                text: root.text
                color: root.labelColor
                font.pixelSize: TechTheme.headline
                font.weight: Font.Bold
            }
            PlainText {
                text: "Uses copied share link"
                color: root.labelColor
                font.pixelSize: TechTheme.caption
                font.weight: Font.DemiBold
            }
        }
    }
}
