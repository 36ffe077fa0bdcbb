import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Dialogs
import Reelcrate
import Reelcrate.Theme

/// The end of a log, to be read, selected and copied; the whole of it can be copied or saved.
FocusScope {
    id: root

    required property LogTail log
    readonly property alias pickerIsOpen: picker.visible
    /// Whether the end is in sight, and so stays there when more comes.
    property bool followsEnd: true
    property bool isNotSaved: false

    function noteScrolled() {
        followsEnd = scroll.contentY >= scroll.contentHeight - scroll.height - 8;
    }

    Surface {
        anchors.fill: parent
        radius: 8
        fillFrom: TechTheme.black(0.34)
        borderFrom: TechTheme.glassStroke
    }
    Flickable {
        id: scroll

        anchors.fill: parent
        anchors.margins: 2
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        onMovementEnded: root.noteScrolled()

        ScrollBar.vertical: GlassScrollBar {
            onPressedChanged: root.noteScrolled()
        }
        TextArea.flickable: TextArea {
            id: area

            readOnly: true
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            color: TechTheme.text
            selectionColor: TechTheme.gold
            selectedTextColor: TechTheme.ink
            font.family: "monospace"
            font.pixelSize: TechTheme.caption
            padding: 6
            rightPadding: 14
            background: null
            Accessible.name: "Log"
            Accessible.readOnly: true
            KeyNavigation.priority: KeyNavigation.BeforeItem
            KeyNavigation.tab: copy
        }
    }
    Row {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 4
        anchors.rightMargin: 14
        spacing: 2
        // They float over the text, and get out of its way while it is read.
        opacity: hover.hovered || copy.activeFocus || save.activeFocus ? 1 : 0.25

        HoverHandler {
            id: hover
        }

        PlainText {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.isNotSaved
            text: "The log could not be saved."
            color: TechTheme.orange
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
            Accessible.ignored: !visible
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        IconButton {
            id: copy

            symbol: "doc.on.doc"
            help: "Copy whole log"
            onClicked: root.log.copyAll()
        }
        IconButton {
            id: save

            symbol: "square.and.arrow.down"
            help: "Save log"
            onClicked: picker.open()
        }
    }
    FocusRing {
        visible: area.activeFocus
    }
    FileDialog {
        id: picker

        title: "Save Log"
        fileMode: FileDialog.SaveFile
        defaultSuffix: "txt"
        onAccepted: root.isNotSaved = !root.log.save(selectedFile)
    }
    Binding {
        target: root.log
        property: "document"
        value: root.visible ? area.textDocument : null
    }
    Connections {
        target: root.log
        function onShown() {
            if (root.followsEnd)
                scroll.contentY = Math.max(0, scroll.contentHeight - scroll.height);
        }
    }
}
