import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// What can be done to a row, or to all selected rows when it is one of several.
Menu {
    id: root

    required property WindowState state
    property string itemID
    property bool deletesSelection: false

    function show(row, item, x, y) {
        itemID = row;
        deletesSelection = state.deletesSelection(row);
        popup(item, x, y);
    }

    implicitWidth: 220
    padding: 5
    background: Surface {
        radius: 9
        fillFrom: TechTheme.queueSurfaceTop
        fillTo: TechTheme.queueSurfaceMiddle
        borderFrom: TechTheme.black(0.14)
        shadowColor: TechTheme.black(0.3)
        shadowRadius: 14
        shadowDown: 6
    }

    MenuItem {
        id: remove

        objectName: "deleteFromRow"
        text: root.deletesSelection ? "Delete Selected Songs" : "Delete Song"
        enabled: root.state.controls.canDelete
        implicitHeight: 30
        padding: 0
        Accessible.name: text
        onTriggered: root.state.deleteFromRow(root.itemID, root.deletesSelection)

        contentItem: ButtonLabel {
            text: remove.text
            symbol: "trash"
            symbolSize: 13
            color: remove.enabled ? TechTheme.queueText : TechTheme.queueMuted
            size: 13
            weight: Font.Medium
            opacity: remove.enabled ? 1 : 0.6
        }
        background: Rectangle {
            radius: 6
            color: TechTheme.faded(TechTheme.gold, remove.highlighted ? 0.35 : 0)
        }
    }
}
