pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Qt.labs.folderlistmodel
import Reelcrate
import Reelcrate.Theme

/// Chooses a folder where the desktop has no dialog of its own for it: the highlighted one, or where
/// none is, the one whose folders are listed.
Dialog {
    id: root

    required property WindowState state
    property url currentFolder
    readonly property url selectedFolder: list.currentIndex < 0 ? currentFolder
                                                                : folders.get(list.currentIndex, "fileUrl")

    function goTo(folder) {
        list.currentIndex = -1;
        currentFolder = folder;
    }

    anchors.centerIn: parent
    modal: true
    padding: 20
    width: 560
    height: Math.min(480, parent ? parent.height - 40 : 480)
    // Its name; the line that shows it is the content's own.
    title: "Choose Output Location"
    header: null
    onOpened: {
        list.currentIndex = -1;
        newName.text = "";
        list.forceActiveFocus(Qt.TabFocusReason);
    }

    background: Surface {
        radius: 14
        fillFrom: TechTheme.graphite
        fillTo: TechTheme.ink
        borderFrom: TechTheme.glassStroke
        shadowColor: TechTheme.black(0.5)
        shadowRadius: 30
        shadowDown: 12
    }

    Item {
        anchors.fill: parent

        PlainText {
            id: heading

            text: "Choose Output Location"
            font.pixelSize: TechTheme.title3
            font.weight: Font.Bold
        }
        PlainText {
            id: message

            anchors.top: heading.bottom
            anchors.topMargin: 4
            width: parent.width
            text: "Choose an existing folder or create a new one for Reelcrate."
            color: TechTheme.muted
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        SecondaryButton {
            id: up

            anchors.top: message.bottom
            anchors.topMargin: 10
            text: "Up"
            onClicked: root.goTo(root.state.parentFolder(root.currentFolder))
        }
        PlainText {
            objectName: "pickedFolder"
            anchors.left: up.right
            anchors.leftMargin: 10
            anchors.right: parent.right
            anchors.verticalCenter: up.verticalCenter
            elide: Text.ElideLeft
            text: root.state.folderPath(root.selectedFolder)
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ListView {
            id: list

            objectName: "folders"
            anchors.top: up.bottom
            anchors.topMargin: 10
            anchors.bottom: making.top
            anchors.bottomMargin: 10
            width: parent.width
            clip: true
            topMargin: 3
            bottomMargin: 3
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: GlassScrollBar {}
            model: FolderListModel {
                id: folders

                folder: root.currentFolder
                showFiles: false
                sortCaseSensitive: false
            }
            delegate: ThemedButton {
                id: entry

                required property int index
                required property string fileName
                required property url fileUrl

                x: 3
                width: ListView.view.width - 6
                height: 32
                focusPolicy: Qt.NoFocus
                text: fileName
                cornerRadius: 3  // the ring stays within the list
                onClicked: list.currentIndex = index
                onDoubleClicked: root.goTo(fileUrl)
                // The list gives the keyboard to the highlighted one.
                Keys.onReturnPressed: root.accept()
                Keys.onEnterPressed: root.accept()

                contentItem: Row {
                    leftPadding: 10
                    spacing: 8

                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "folder"
                        color: TechTheme.text
                    }
                    PlainText {
                        anchors.verticalCenter: parent.verticalCenter
                        width: entry.width - 45
                        text: entry.fileName
                        font.weight: Font.DemiBold
                    }
                }
                background: Rectangle {
                    radius: 6
                    color: TechTheme.faded(TechTheme.gold, entry.ListView.isCurrentItem ? 0.35 : 0)
                }
            }
            Accessible.role: Accessible.List
            Accessible.name: "Folders"
            Keys.onRightPressed: root.goTo(root.selectedFolder)
            Keys.onLeftPressed: up.clicked()
        }
        FocusRing {
            anchors.fill: list
            visible: list.activeFocus && list.currentIndex < 0 && TechTheme.keyboardLeads
        }
        Item {
            id: making

            anchors.bottom: buttons.top
            anchors.bottomMargin: 14
            width: parent.width
            height: 38

            TextEntry {
                id: newName

                objectName: "newFolderName"
                width: parent.width - make.width - 10
                placeholderText: "Name of a new folder"
                Accessible.name: "Name of a new folder"
                onAccepted: make.clicked()
            }
            SecondaryButton {
                id: make

                objectName: "newFolder"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: "New Folder"
                enabled: newName.text.trim() !== ""
                onClicked: {
                    const made = root.state.makeFolder(root.currentFolder, newName.text);
                    if (made.toString() === "")
                        return;
                    newName.text = "";
                    root.goTo(made);
                }
            }
        }
        Row {
            id: buttons

            anchors.right: parent.right
            anchors.bottom: parent.bottom
            spacing: 10

            SecondaryButton {
                text: "Cancel"
                onClicked: root.reject()
            }
            QueueDownloadButton {
                text: "Choose"
                isDefault: true
                onClicked: root.accept()
            }
        }
    }
}
