pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// The queue: its header, its rows, and the keyboard's way through them.
FocusScope {
    id: root

    objectName: "queuePane"

    required property WindowState state
    readonly property windowControls controls: state.controls
    readonly property alias menuIsOpen: menu.visible
    /// Narrow windows leave the cards all the room there is.
    readonly property real margin: Math.max(8, Math.min(24, (width - 704) / 2))

    QueueBackgroundView {
        anchors.fill: parent
        fillFrom: TechTheme.queuePaneTop
        fillMiddle: TechTheme.queuePaneMiddle
        fillTo: TechTheme.queuePaneBottom
    }
    MouseArea {
        anchors.fill: parent
        onClicked: root.state.clickQueueArea()
    }
    Row {
        id: title

        x: root.margin
        y: 16
        spacing: 10

        PlainText {
            text: "Queue"
            color: TechTheme.queueText
            font.pixelSize: 28
            font.weight: Font.ExtraBold
            Accessible.ignored: false
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        QueueHeaderChip {
            objectName: "songCount"
            anchors.verticalCenter: parent.verticalCenter
            text: root.controls.songCount
            systemName: "music.note.list"
            emphasized: true
            Accessible.name: text + " songs"
        }
        QueueHeaderChip {
            objectName: "activeCount"
            anchors.verticalCenter: parent.verticalCenter
            text: root.controls.activeCount
            systemName: "bolt.fill"
        }
        QueueHeaderChip {
            objectName: "selectedCount"
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            text: root.controls.selectedCount
            systemName: "checkmark.circle.fill"
        }
    }
    EmptyQueue {
        objectName: "emptyQueue"
        anchors.centerIn: list
        visible: root.controls.isQueueEmpty
    }
    ListView {
        id: list

        objectName: "queueList"
        anchors.top: title.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        clip: true
        focus: true
        activeFocusOnTab: !root.controls.isQueueEmpty
        topMargin: 12
        bottomMargin: 20
        spacing: 10
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        keyNavigationEnabled: false
        // The selection is the queue's own; a current row would take the keyboard from the list.
        currentIndex: -1
        model: root.state.rows
        ScrollBar.vertical: GlassScrollBar {
            tint: TechTheme.queueMuted
        }
        Accessible.role: Accessible.List
        Accessible.name: "Queue"

        // The arrow keys are the queue's own once the keyboard has come here.
        onActiveFocusChanged: {
            if (activeFocus)
                root.state.clickQueueArea();
        }
        Keys.onReturnPressed: root.state.actOnRow(root.state.focusedItemID())
        Keys.onEnterPressed: root.state.actOnRow(root.state.focusedItemID())
        Keys.onMenuPressed: {
            const row = itemAtIndex(root.state.focusedIndex());
            if (row)
                menu.show(root.state.focusedItemID(), row, 40, 40);
        }

        delegate: QueueRow {
            x: root.margin
            width: list.width - 2 * root.margin
            onClicked: modifiers => root.state.clickRow(itemID, modifiers)
            onActed: root.state.actOnRow(itemID)
            onMenuRequested: (x, y) => menu.show(itemID, this, x, y)
        }

        // Between and below the rows; what lies under the list gets no clicks.
        MouseArea {
            parent: list.contentItem
            y: list.contentY
            width: list.width
            height: list.height
            z: -1
            onClicked: root.state.clickQueueArea()
        }
    }
    FocusRing {
        anchors.fill: list
        anchors.margins: 2
        cornerRadius: 8
        visible: list.activeFocus
    }
    RowMenu {
        id: menu

        state: root.state
    }
    Connections {
        target: root.state
        function onFocusMoved() {
            list.positionViewAtIndex(root.state.focusedIndex(), ListView.Contain);
        }
    }
}
