import QtQuick
import QtQuick.Dialogs
import Reelcrate
import Reelcrate.Theme

/// The folder that event folders go into.
Item {
    id: root

    required property WindowState state
    readonly property bool pickerIsOpen: picker.visible || ownPicker.visible

    implicitHeight: texts.height + 8

    Column {
        id: texts

        y: 6
        width: root.width - button.width - 8
        spacing: 2

        PlainText {
            text: "Choose Output Location"
            color: TechTheme.muted
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
        }
        PlainText {
            objectName: "outputFolder"
            width: parent.width
            text: root.state.outputFolder
            font.pixelSize: TechTheme.caption
            wrapMode: Text.WrapAnywhere
            maximumLineCount: 3
            Accessible.ignored: false
            Accessible.role: Accessible.StaticText
            Accessible.name: "Output folder: " + text
        }
    }
    IconButton {
        id: button

        objectName: "chooseFolder"
        anchors.right: parent.right
        anchors.verticalCenter: texts.verticalCenter
        symbol: "folder"
        help: "Choose folder"
        onClicked: {
            picker.currentFolder = root.state.folderPickerStart;
            picker.open();
            if (root.state.isOfTheDesktop(picker))
                return;
            picker.close();
            // With Qt 6.8 it is a window of its own, which took the keyboard.
            root.Window.window.requestActivate();
            ownPicker.goTo(root.state.folderPickerStart);
            ownPicker.open();
        }
    }
    FolderDialog {
        id: picker

        objectName: "folderPicker"
        title: "Choose Output Location"
        acceptLabel: "Choose"
        onAccepted: root.state.chooseFolder(selectedFolder)
    }
    FolderPicker {
        id: ownPicker

        parent: root.Window.window ? root.Window.window.contentItem : null
        state: root.state
        onAccepted: root.state.chooseFolder(selectedFolder)
    }
}
