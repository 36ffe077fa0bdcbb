import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// What can be done to a row, or to all selected rows when it is one of several; and to the queue.
Menu {
    id: root

    required property WindowState state
    property string itemID
    property bool deletesSelection: false
    property bool canSavePlaylist: false

    function show(row, item, x, y) {
        itemID = row;
        deletesSelection = state.deletesSelection(row);
        canSavePlaylist = state.canSavePlaylist();
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

    component Entry: MenuItem {
        id: entry

        required property string symbol

        implicitHeight: 30
        padding: 0
        Accessible.name: text

        contentItem: ButtonLabel {
            text: entry.text
            symbol: entry.symbol
            symbolSize: 13
            color: entry.enabled ? TechTheme.queueText : TechTheme.queueMuted
            size: 13
            weight: Font.Medium
            opacity: entry.enabled ? 1 : 0.6
        }
        background: Rectangle {
            radius: 6
            color: TechTheme.faded(TechTheme.gold, entry.highlighted ? 0.35 : 0)
        }
    }

    Entry {
        objectName: "savePlaylist"
        text: "Save Playlist"
        symbol: "square.and.arrow.down"
        enabled: root.canSavePlaylist
        onTriggered: root.state.savePlaylist()
    }

    Entry {
        objectName: "deleteFromRow"
        text: root.deletesSelection ? "Delete Selected Songs" : "Delete Song"
        symbol: "trash"
        enabled: root.state.controls.canDelete
        onTriggered: root.state.deleteFromRow(root.itemID, root.deletesSelection)
    }
}
