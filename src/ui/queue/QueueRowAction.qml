import QtQuick
import Reelcrate.Theme

/// A round button for what a row needs next, or a turning ring while it is busy.
Item {
    id: root

    required property bool isBusy
    required property string symbol
    required property string help
    required property bool isEnabled

    signal acted

    implicitWidth: 38
    implicitHeight: 38

    CircularRowButton {
        id: button

        objectName: "action"
        anchors.centerIn: parent
        visible: !root.isBusy
        systemName: root.symbol
        help: root.help
        enabled: root.isEnabled && !root.isBusy
        onClicked: root.acted()
    }
    HelpWhenDisabled {
        button: button
    }
    BusyBadge {
        anchors.fill: parent
        visible: root.isBusy
        help: root.help
    }
}
