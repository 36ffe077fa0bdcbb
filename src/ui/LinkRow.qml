import QtQuick
import Reelcrate
import Reelcrate.Theme

/// The link field with its two buttons.
FieldSurface {
    id: root

    required property WindowState state

    implicitHeight: 40
    isFocused: field.activeFocus

    TextEntry {
        id: field

        objectName: "linkField"
        anchors.verticalCenter: parent.verticalCenter
        width: paste.x - 4
        background: null
        rightPadding: 4
        font.pixelSize: 14
        maximumLength: 2147483647  // a whole set list may be pasted
        text: root.state.pastedLinks
        placeholderText: "Paste link here"
        Accessible.name: "Paste Link"
        // Also what assistive technology sets.
        onTextChanged: {
            if (text !== root.state.pastedLinks)
                root.state.pastedLinks = text;
        }
        onAccepted: root.state.addSongsFromFieldOrClipboard()
    }
    IconButton {
        id: paste

        objectName: "pasteLink"
        anchors.verticalCenter: parent.verticalCenter
        anchors.right: add.left
        anchors.rightMargin: 4
        symbol: "doc.on.clipboard"
        help: "Paste copied link"
        onClicked: root.state.pasteIntoField()
    }
    ThemedButton {
        id: add

        objectName: "addLink"
        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: 7
        implicitHeight: 26
        leftPadding: 10
        rightPadding: 10
        cornerRadius: 13
        text: "Add"
        symbol: "plus.circle.fill"
        help: "Add pasted link"
        labelColor: TechTheme.ink
        labelWeight: Font.Bold
        opacity: enabled ? 1 : 0.5
        enabled: root.state.controls.addingAllowed
        onClicked: root.state.addSongsFromFieldOrClipboard()

        background: Surface {
            radius: add.cornerRadius
            fillFrom: TechTheme.goldTop
            fillTo: TechTheme.goldBottom
            borderFrom: TechTheme.white(0.30)
        }
    }
    HelpWhenDisabled {
        button: add
    }
}
