pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// The window: the dark header and controls, the light queue, and what the whole window takes.
ApplicationWindow {
    id: root

    required property WindowState state
    /// While one is, keys are its own.
    readonly property bool popupIsOpen: queue.menuIsOpen || quitDialog.visible || rail.pickerIsOpen
                                        || footer.pickerIsOpen

    title: state.title
    width: 1440
    height: 1040
    minimumWidth: 1080
    minimumHeight: 620
    color: TechTheme.ink

    onClosing: close => {
        close.accepted = root.state.unfinishedCount() === 0;
        if (!close.accepted)
            quitDialog.open();
    }

    TechBackgroundView {
        anchors.fill: parent
        fillFrom: TechTheme.ink
        fillMiddle: TechTheme.graphite
        fillTo: TechTheme.deepTeal
    }

    HeaderBar {
        id: header

        width: parent.width
        state: root.state
    }
    Surface {
        id: separator

        anchors.top: header.bottom
        width: parent.width
        height: 1
        vertical: true
        fillFrom: TechTheme.white(0.20)
        fillTo: TechTheme.white(0)
    }
    ControlRail {
        id: rail

        anchors.top: separator.bottom
        anchors.bottom: footer.top
        width: 360
        state: root.state
    }
    QueuePane {
        id: queue

        anchors.top: separator.bottom
        anchors.bottom: footer.top
        anchors.left: rail.right
        anchors.right: parent.right
        state: root.state
    }
    FooterBar {
        id: footer

        anchors.bottom: parent.bottom
        width: parent.width
        roomForQueue: (root.height - header.height) / 5
        state: root.state
    }

    DropArea {
        id: dropArea

        anchors.fill: parent
        onEntered: drag => drag.accepted = root.state.takesDrop(drag.urls, drag.text)
        onDropped: drop => {
            root.state.addDropped(drop.urls, drop.text);
            drop.accept(Qt.CopyAction);
        }

        FocusRing {
            anchors.margins: 2
            visible: dropArea.containsDrag
        }
    }
    QuitDialog {
        id: quitDialog

        state: root.state
    }
}
