import QtQuick
import Reelcrate
import Reelcrate.Theme

/// The program's name and summary line, and what concerns the queue as a whole.
Item {
    id: root

    required property WindowState state

    implicitHeight: 82

    Surface {
        anchors.fill: parent
        fillFrom: TechTheme.white(0.145)
        fillMiddle: TechTheme.faded(TechTheme.cobalt, 0.245)
        fillTo: TechTheme.black(0.46)
    }
    Surface {
        id: badge

        x: 24
        anchors.verticalCenter: parent.verticalCenter
        width: 54
        height: 54
        radius: 27
        fillFrom: TechTheme.gold
        fillTo: TechTheme.badgeBottom
        borderFrom: TechTheme.white(0.30)
        shadowColor: TechTheme.faded(TechTheme.gold, 0.34)
        shadowRadius: 9

        Symbol {
            anchors.centerIn: parent
            name: "arrow.down.circle.fill"
            width: 36
            height: 36
            color: TechTheme.white(1)
            colorTo: TechTheme.goldTop
            vertical: true
        }
    }
    Column {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: badge.right
        anchors.leftMargin: 16
        anchors.right: buttons.left
        anchors.rightMargin: 16

        PlainText {
            text: "Reelcrate"
            font.pixelSize: 27
            font.weight: Font.ExtraBold
            Accessible.ignored: false
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        PlainText {
            objectName: "summary"
            width: parent.width
            text: root.state.summary
            color: TechTheme.muted
            font.weight: Font.DemiBold
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    Row {
        id: buttons

        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: 24
        spacing: 16

        // Comes and goes where no other button has to make way.
        SecondaryButton {
            objectName: "stopAll"
            anchors.verticalCenter: parent.verticalCenter
            visible: root.state.controls.canStopAll
            text: "Stop All"
            symbol: "stop.fill"
            onClicked: {
                // It goes with its work: the keyboard must not be left nowhere.
                if (activeFocus)
                    openOutput.forceActiveFocus(Qt.TabFocusReason);
                root.state.stopAll();
            }
        }
        SecondaryButton {
            id: openOutput

            objectName: "openOutput"
            anchors.verticalCenter: parent.verticalCenter
            text: "Open Output"
            symbol: "folder"
            onClicked: root.state.openOutput()
        }
        Item {
            width: 48
            height: 38

            QueueHeaderButton {
                id: clear

                objectName: "clearQueue"
                anchors.fill: parent
                symbol: "trash"
                symbolSize: 15
                help: "Clear queue"
                enabled: root.state.controls.canClearQueue
                onClicked: root.state.clearQueue()
            }
            HelpWhenDisabled {
                button: clear
            }
        }
        QueueDownloadButton {
            objectName: "downloadAll"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(118, implicitWidth)
            text: "Download All"
            symbol: "arrow.down.circle.fill"
            enabled: root.state.controls.canDownloadAll
            onClicked: root.state.downloadAll()
        }
    }
}
