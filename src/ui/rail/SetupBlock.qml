import QtQuick
import Reelcrate
import Reelcrate.Theme

/// Whether the tools are ready, what makes them so, and whether there is a newer version.
Column {
    id: root

    required property WindowState state
    readonly property windowControls controls: state.controls
    readonly property alias pickerIsOpen: details.pickerIsOpen

    topPadding: 8
    spacing: 8

    Rectangle {
        objectName: "setupLabel"
        implicitWidth: pill.width + 20
        implicitHeight: 24
        radius: 12
        color: TechTheme.faded(root.controls.setupColor, 0.12)

        Row {
            id: pill

            anchors.centerIn: parent
            spacing: 6

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "wrench.and.screwdriver.fill"
                color: root.controls.setupColor
            }
            PlainText {
                anchors.verticalCenter: parent.verticalCenter
                text: "Setup"
                color: root.controls.setupColor
                font.weight: Font.DemiBold
            }
        }
    }
    PlainText {
        objectName: "setupDetail"
        width: parent.width
        text: root.controls.setupDetail
        color: TechTheme.muted
        font.pixelSize: TechTheme.caption
        wrapMode: Text.Wrap
        maximumLineCount: 4
        Accessible.ignored: false
        Accessible.role: Accessible.StaticText
        Accessible.name: "Setup: " + text
    }
    SecondaryButton {
        objectName: "setup"
        width: parent.width
        text: root.controls.setupTitle
        symbol: "wrench.and.screwdriver"
        onClicked: root.state.setUp()
    }
    LogDisclosure {
        id: details

        objectName: "toolDetails"
        width: parent.width
        label: "Details"
        log: root.state.toolLog
        isForcedOpen: root.controls.isSettingUp
    }
    SecondaryButton {
        objectName: "scanForUpdate"
        width: parent.width
        text: root.controls.updateTitle
        symbol: "arrow.triangle.2.circlepath"
        onClicked: root.state.scanForUpdate()
    }
    PlainText {
        objectName: "updateMessage"
        width: parent.width
        visible: text !== ""
        text: root.controls.updateMessage
        color: TechTheme.muted
        font.pixelSize: TechTheme.caption
        font.weight: Font.Medium
        wrapMode: Text.Wrap
        maximumLineCount: 12
        Accessible.ignored: false
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
