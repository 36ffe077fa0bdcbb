import QtQuick
import Reelcrate.Theme

/// Stands where a row's button is when the row is busy.
Surface {
    id: root

    required property string help

    radius: width / 2
    fillFrom: TechTheme.white(0.22)
    fillTo: TechTheme.white(0.10)
    borderFrom: TechTheme.faded(TechTheme.gold, 0.46)
    shadowColor: TechTheme.faded(TechTheme.gold, 0.25)
    shadowRadius: 4

    LoadingRingView {
        anchors.centerIn: parent
    }
    HoverHandler {
        id: pointer
    }
    HelpTip {
        text: root.help
        visible: pointer.hovered
    }
}
