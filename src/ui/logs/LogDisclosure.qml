import QtQuick
import Reelcrate

/// A log that is shown on request, and by itself while `isForcedOpen`. Nothing while it is empty.
Column {
    id: root

    required property string label
    required property LogTail log
    property bool isForcedOpen: false
    property bool isChosenOpen: false
    readonly property bool isOpen: isForcedOpen || isChosenOpen
    readonly property alias pickerIsOpen: area.pickerIsOpen

    visible: !log.isEmpty
    spacing: 4

    DisclosureButton {
        text: root.label
        isOpen: root.isOpen
        onClicked: root.isChosenOpen = !root.isChosenOpen
    }
    LogArea {
        id: area

        width: parent.width
        height: 110
        visible: root.isOpen
        log: root.log
    }
}
