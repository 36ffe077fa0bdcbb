import QtQuick
import QtQuick.Controls.Basic
import Reelcrate
import Reelcrate.Theme

/// What can be done to a row, or to all selected rows when it is one of several; and to the queue,
/// which is all that there is without a row.
Menu {
    id: root

    required property WindowState state
    property string itemID
    readonly property bool hasRow: itemID !== ""
    property bool isSong: false
    property bool takesSelection: false
    property string error
    property bool hasOthersInNeed: false
    property bool canPasteSongList: false
    property bool canSavePlaylist: false
    property bool canStop: false
    property bool canTagLoudness: false
    property bool tagsLoudness: false

    function show(row, item, x, y) {
        itemID = row;
        isSong = state.isSong(row);
        takesSelection = state.takesSelection(row);
        error = state.errorOf(row);
        hasOthersInNeed = state.linksInNeed() !== "";
        canPasteSongList = state.canPasteSongList();
        canSavePlaylist = state.canSavePlaylist();
        canStop = state.canStop(row, takesSelection);
        canTagLoudness = state.canTagLoudness();
        tagsLoudness = state.tagsLoudness();
        popup(item, x, y);
    }
    /// What concerns no row.
    function showForQueue(item, x, y) {
        show("", item, x, y);
    }
    /// With the first entry that can be chosen highlighted.
    function showByKeyboard(row, item) {
        show(row, item, 40, 40);
        currentIndex = canStop ? 0 : remove.enabled ? 1 : error !== "" ? 2 : 3;
    }

    implicitWidth: 260
    margins: 8
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

    RowMenuItem {
        objectName: "stopFromRow"
        text: root.takesSelection ? "Stop Selected Songs" : "Stop Song"
        symbol: "stop.fill"
        enabled: root.canStop
        visible: root.hasRow
        onTriggered: root.state.stopFromRow(root.itemID, root.takesSelection)
    }
    RowMenuItem {
        id: remove

        objectName: "deleteFromRow"
        text: root.takesSelection ? "Delete Selected Songs" : "Delete Song"
        symbol: "trash"
        enabled: root.state.controls.canDelete
        visible: root.hasRow
        onTriggered: root.state.deleteFromRow(root.itemID, root.takesSelection)
    }
    RowMenuItem {
        objectName: "copyError"
        text: "Copy Error"
        symbol: "exclamationmark.triangle.fill"
        visible: root.error !== ""
        onTriggered: root.state.copyText(root.error)
    }
    RowMenuItem {
        objectName: "copyLinks"
        text: root.takesSelection ? "Copy Links" : root.isSong ? "Copy Song" : "Copy Link"
        symbol: root.isSong && !root.takesSelection ? "music.note" : "link"
        visible: root.hasRow
        onTriggered: root.state.copyText(root.state.linksOf(root.itemID, root.takesSelection))
    }
    RowMenuItem {
        objectName: "copyLinksInNeed"
        text: "Copy Links That Need Attention"
        symbol: "link"
        visible: root.hasOthersInNeed
        onTriggered: root.state.copyText(root.state.linksInNeed())
    }
    RowMenuItem {
        objectName: "pasteSongList"
        text: "Paste Song List"
        symbol: "doc.on.clipboard"
        enabled: root.canPasteSongList
        onTriggered: root.state.pasteSongList()
    }
    RowMenuItem {
        objectName: "savePlaylist"
        text: "Save Playlist"
        symbol: "square.and.arrow.down"
        enabled: root.canSavePlaylist
        onTriggered: root.state.savePlaylist()
    }
    RowMenuSwitch {
        objectName: "tagLoudness"
        text: "Tag Loudness"
        symbol: "speaker.wave.2.fill"
        enabled: root.canTagLoudness
        isChosen: root.tagsLoudness
        onTriggered: root.state.setTagsLoudness(!isChosen)
    }
}
