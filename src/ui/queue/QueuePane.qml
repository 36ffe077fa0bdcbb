pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// The queue: its header, its rows, and the keyboard's way through them.
FocusScope {
    id: root

    required property WindowState state
    readonly property windowControls controls: state.controls
    readonly property alias menuIsOpen: menu.visible
    /// Narrow windows leave the cards all the room there is.
    readonly property real margin: Math.max(8, Math.min(24, (width - 704) / 2))

    function takeKeyboard() {
        list.forceActiveFocus(Qt.MouseFocusReason);
    }
    function showMenu() {
        list.positionViewAtIndex(state.focusedIndex(), ListView.Contain);
        const row = list.itemAtIndex(state.focusedIndex());
        if (row)
            menu.showByKeyboard(state.focusedItemID(), row);
        else
            menu.showForQueue(list, 40, 40);
    }
    function clickArea(mouse, item) {
        state.clickQueueArea();
        takeKeyboard();
        if (mouse.button === Qt.RightButton)
            menu.showForQueue(item, mouse.x, mouse.y);
    }

    objectName: "queuePane"

    QueueBackgroundView {
        anchors.fill: parent
        fillFrom: TechTheme.queuePaneTop
        fillMiddle: TechTheme.queuePaneMiddle
        fillTo: TechTheme.queuePaneBottom
    }
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onClicked: mouse => root.clickArea(mouse, this)
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

        /// Of the rows in sight, from the top.
        function shownItemIDs() {
            const ids = [];
            for (let i = indexAt(root.margin, contentY + spacing); i >= 0; ++i) {
                const row = itemAtIndex(i) as QueueRow;
                if (!row)
                    break;
                ids.push(row.itemID);
            }
            return ids;
        }

        objectName: "queueList"
        anchors.top: title.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        clip: true
        focus: true
        activeFocusOnTab: true
        topMargin: 12
        bottomMargin: 20
        spacing: 10
        // What moves in a row must not move where nobody sees it.
        cacheBuffer: 0
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        keyNavigationEnabled: false
        // The selection is the queue's own; a current row would take the keyboard from the list.
        currentIndex: -1
        model: root.state.rows
        ScrollBar.vertical: GlassScrollBar {
            tint: TechTheme.queueMuted
        }
        // Cards come and go; the outline tells of the rows.
        Accessible.ignored: true

        // The arrow keys are the queue's own once the keyboard has come here.
        onActiveFocusChanged: {
            if (activeFocus)
                root.state.clickQueueArea();
        }
        // Also of a queue that has been emptied and filled again meanwhile.
        onCountChanged: {
            if (activeFocus)
                root.state.clickQueueArea();
        }
        Keys.onReturnPressed: root.state.actOnFocusedRow()
        Keys.onEnterPressed: root.state.actOnFocusedRow()
        Keys.onMenuPressed: root.showMenu()
        Keys.onPressed: event => {
            if (event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier) {
                root.showMenu();
                event.accepted = true;
            } else {
                const rowsInSight = Math.floor(height / (contentHeight / count));
                event.accepted = root.state.pressQueueKey(event.key, event.modifiers, rowsInSight);
            }
        }

        delegate: QueueRow {
            x: root.margin
            width: list.width - 2 * root.margin
            onClicked: modifiers => {
                root.state.clickRow(itemID, modifiers);
                root.takeKeyboard();
            }
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
            acceptedButtons: Qt.LeftButton | Qt.RightButton
            onClicked: mouse => root.clickArea(mouse, this)
        }
    }
    QueueOutline {
        anchors.fill: list
        state: root.state
        view: list
        hasKeyboard: list.activeFocus
        Accessible.role: Accessible.List
    }
    FocusRing {
        anchors.fill: list
        anchors.margins: 2
        cornerRadius: 8
        visible: list.activeFocus && TechTheme.keyboardLeads
    }
    // A reset of the model shows the first rows again, once the view has got to it.
    Connections {
        property var shown: []

        target: root.state.rows
        function onModelAboutToBeReset() {
            shown = list.shownItemIDs();
        }
        function onModelReset() {
            comeBack.index = root.state.rows.firstOf(shown);
            comeBack.start();
        }
    }
    Timer {
        id: comeBack

        property int index: -1

        interval: 0
        onTriggered: {
            list.forceLayout();
            if (index >= 0)
                list.positionViewAtIndex(index, ListView.Beginning);
        }
    }
    RowMenu {
        id: menu

        state: root.state
    }
    Connections {
        target: root.state
        function onFocusMoved() {
            list.positionViewAtIndex(root.state.focusedIndex(), ListView.Contain);
            root.takeKeyboard();
        }
    }
}
