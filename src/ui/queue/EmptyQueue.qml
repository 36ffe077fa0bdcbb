import QtQuick
import Reelcrate.Theme

/// Stands where the rows will be.
Surface {
    id: root

    implicitWidth: 260
    implicitHeight: content.height + 28
    radius: 13
    fillFrom: TechTheme.white(0.60)
    borderFrom: TechTheme.white(0.75)
    shadowColor: TechTheme.black(0.10)
    shadowRadius: 14
    shadowDown: 7
    Accessible.role: Accessible.StaticText
    Accessible.name: title.text + ". " + line.text

    Column {
        id: content

        x: 14
        y: 14
        width: root.width - 28
        spacing: 8

        Surface {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 78
            height: 78
            radius: 18
            fillFrom: TechTheme.white(1)
            fillTo: TechTheme.lightBottom
            borderFrom: TechTheme.white(0.8)
            shadowColor: TechTheme.black(0.12)
            shadowRadius: 10
            shadowDown: 5

            Symbol {
                anchors.centerIn: parent
                name: "tray.and.arrow.down.fill"
                width: 38
                height: 38
                color: TechTheme.trayIcon
            }
        }
        PlainText {
            id: title

            width: parent.width
            topPadding: 4
            horizontalAlignment: Text.AlignHCenter
            text: "No links in the queue"
            color: TechTheme.queueText
            font.pixelSize: TechTheme.title3
            font.weight: Font.ExtraBold
        }
        PlainText {
            id: line

            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 2
            text: "Copy a share link, then click Add Songs."
            color: TechTheme.queueMuted
            font.weight: Font.DemiBold
        }
    }
}
