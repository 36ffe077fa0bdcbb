pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// Where songs come in and where they go: links, the event's name, the folder, the mode, the tools.
Flickable {
    id: root

    required property WindowState state
    readonly property bool pickerIsOpen: folderRow.pickerIsOpen || setup.pickerIsOpen

    function show(item) {
        const top = item.mapToItem(column, 0, 0).y;
        const shown = Math.max(Math.min(contentY, top), top + item.height + 48 - height);
        contentY = Math.max(0, Math.min(shown, contentHeight - height));
    }

    contentHeight: column.height + 36
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: GlassScrollBar {}

    TechSurface {
        x: 14
        y: 12
        width: root.width - 28
        height: column.height + 12
        cornerRadius: 16
        depth: SurfaceDepth.Medium
    }
    Column {
        id: column

        x: 28
        y: 12
        width: root.width - 56
        topPadding: 16
        bottomPadding: 4
        spacing: 8

        Row {
            spacing: 8

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "plus.circle.fill"
                fontSize: 20
                color: TechTheme.gold
            }
            PlainText {
                text: "Add Songs"
                font.pixelSize: 23
                font.weight: Font.Bold
            }
        }
        PlainText {
            width: parent.width
            text: "Copy a share link, then add it to the queue."
            color: TechTheme.muted
            font.pixelSize: TechTheme.caption
            font.weight: Font.DemiBold
        }
        AddButton {
            width: parent.width
            text: root.state.controls.addTitle
            enabled: root.state.controls.addingAllowed
            onClicked: root.state.addSongsFromFieldOrClipboard()
        }
        RailLabel {
            text: "Paste Link"
        }
        LinkRow {
            width: parent.width
            state: root.state
        }
        RailLabel {
            text: "Name Folder"
        }
        TextEntry {
            objectName: "eventName"
            width: parent.width
            text: root.state.eventName
            placeholderText: "7-4-26 Wedding Requests"
            Accessible.name: "Name Folder"
            // Also what assistive technology sets.
            onTextChanged: {
                if (text !== root.state.eventName)
                    root.state.eventName = text;
            }
        }
        FolderRow {
            id: folderRow

            width: parent.width
            state: root.state
        }
        RailLabel {
            text: "MP3 / MP4"
        }
        Row {
            id: modes

            width: parent.width
            spacing: 8

            Repeater {
                model: root.state.modes

                ModeButton {
                    required property int index
                    required property string modelData

                    objectName: "mode" + modelData
                    width: (modes.width - modes.spacing) / 2
                    text: modelData
                    isChosen: root.state.mode === index
                    onClicked: root.state.mode = index
                }
            }
        }
        SetupBlock {
            id: setup

            width: parent.width
            state: root.state
        }
    }

    // The keyboard may be at a control that is out of sight.
    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            let item = root.Window.window.activeFocusItem;
            for (let at = item; at; at = at.parent) {
                if (at instanceof LogArea)
                    item = at;  // a text is as high as its log is long
                if (at === column)
                    root.show(item);
            }
        }
    }
}
