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

        // To lay out all of a long line takes longer than a key is held: it is shown by its
        // beginning, and taken or dropped as a whole.
        readonly property int longest: 4000
        readonly property bool isLong: root.state.pastedLinks.length > longest
        // In one line, which shows nothing where another ends.
        readonly property string shownLinks: isLong ? root.state.pastedLinks.slice(0, 300) + " …"
                                                    : root.state.pastedLinks.replace(/[\r\n]/g, " ")

        objectName: "linkField"
        anchors.verticalCenter: parent.verticalCenter
        width: paste.x - 4
        background: null
        rightPadding: 4
        font.pixelSize: 14
        maximumLength: 2147483647  // a whole set list may be pasted
        text: shownLinks
        readOnly: isLong
        placeholderText: "Paste link here"
        Accessible.name: "Paste Link"
        // Also what assistive technology sets.
        onTextChanged: {
            if (!isLong && text !== shownLinks)
                root.state.pastedLinks = text;
        }
        Keys.onPressed: event => {
            if (isLong && (event.key === Qt.Key_Backspace || event.key === Qt.Key_Delete))
                root.state.pastedLinks = "";
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
        enabled: root.state.controls.addingAllowed
        onClicked: root.state.addSongsFromFieldOrClipboard()

        background: Surface {
            opacity: add.enabled ? 1 : 0.62
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
