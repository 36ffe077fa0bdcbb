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

    Surface {
        anchors.fill: parent
        radius: 8
        fillFrom: TechTheme.black(0.34)
        borderFrom: TechTheme.glassStroke
    }
    ScrollView {
        id: scroll

        anchors.fill: parent
        anchors.margins: 2
        clip: true

        TextArea {
            id: area

            // Whether the end is in sight, and so should stay when more comes.
            property bool followsEnd: true

            readOnly: true
            selectByMouse: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.WrapAnywhere
            color: TechTheme.text
            selectionColor: TechTheme.gold
            selectedTextColor: TechTheme.ink
            font.family: "monospace"
            font.pixelSize: TechTheme.caption
            padding: 6
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
        opacity: 0.9

        IconButton {
            id: copy

            symbol: "doc.on.doc"
            help: "Copy whole log"
            onClicked: root.log.copyAll()
        }
        IconButton {
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
        onAccepted: root.log.save(selectedFile)
    }
    Binding {
        target: root.log
        property: "document"
        value: root.visible ? area.textDocument : null
    }
    Connections {
        target: root.log
        function onShown() {
            scroll.ScrollBar.vertical.position = 1 - scroll.ScrollBar.vertical.size;
        }
    }
}
