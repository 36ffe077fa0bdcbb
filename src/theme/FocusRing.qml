import QtQuick
import Reelcrate.Theme

/// Shows around its parent that the keyboard acts there.
Surface {
    id: root

    property real cornerRadius: 8

    anchors.fill: parent
    anchors.margins: -3
    radius: cornerRadius + 3
    borderWidth: 2
    borderFrom: TechTheme.gold
}
