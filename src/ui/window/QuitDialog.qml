import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// Asks before the window closes on songs that are not finished.
Dialog {
    id: root

    required property WindowState state
    title: "Quit"
    header: null
    anchors.centerIn: parent
    modal: true
    padding: 20
    width: 380

    background: Surface {
        radius: 14
        fillFrom: TechTheme.graphite
        fillTo: TechTheme.ink
        borderFrom: TechTheme.glassStroke
        shadowColor: TechTheme.black(0.5)
        shadowRadius: 30
        shadowDown: 12
    }
    contentItem: Column {
        spacing: 10

        PlainText {
            objectName: "quitQuestion"
            text: root.state.quitQuestion
            font.pixelSize: TechTheme.title3
            font.weight: Font.Bold
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        PlainText {
            width: parent.width
            text: "Quit now, and what is half downloaded is discarded. Complete songs stay."
            color: TechTheme.muted
            wrapMode: Text.Wrap
            maximumLineCount: 3
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Row {
            anchors.right: parent.right
            topPadding: 8
            spacing: 10

            SecondaryButton {
                objectName: "quit"
                text: "Quit"
                onClicked: root.state.quitRequested()
            }
            QueueDownloadButton {
                objectName: "keepDownloading"
                text: "Keep Downloading"
                focus: true
                isDefault: true
                onClicked: root.close()
            }
        }
    }
}
