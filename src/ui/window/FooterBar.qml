import QtQuick
import Reelcrate
import Reelcrate.Theme

/// The version, what the program does with links, and the log of the downloads.
Column {
    id: root

    required property WindowState state
    readonly property alias pickerIsOpen: log.pickerIsOpen

    /// The least that the queue above is left.
    property real roomForQueue: 0

    Item {
        width: 1
        height: disclosure.isOpen ? 10 : 0
    }
    LogArea {
        id: log

        objectName: "runLog"
        x: 24
        width: root.width - 48
        height: Math.max(90, Math.min(180, root.roomForQueue))
        visible: disclosure.isOpen
        log: root.state.runLog
    }
    Item {
        width: root.width
        height: 34

        PlainText {
            id: version

            x: 24
            anchors.verticalCenter: parent.verticalCenter
            text: root.state.version
            color: TechTheme.muted
            font.pixelSize: TechTheme.caption
            font.weight: Font.DemiBold
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        DisclosureButton {
            id: disclosure

            objectName: "logDisclosure"
            isOpen: false
            anchors.left: version.right
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            text: "Log"
            onClicked: isOpen = !isOpen
        }
        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: disclosure.right
            anchors.leftMargin: 12
            anchors.right: parent.right
            anchors.rightMargin: 24
            horizontalAlignment: Text.AlignRight
            text: "YouTube and public Facebook links use yt-dlp. Spotify links use playlist metadata and do not rip protected Spotify streams."
            color: TechTheme.muted
            font.pixelSize: TechTheme.caption
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
