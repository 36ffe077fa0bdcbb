import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// A tooltip.
ToolTip {
    id: root

    delay: 700
    padding: 7
    contentItem: PlainText {
        text: root.text
        color: TechTheme.text
        font.pixelSize: 11
    }
    background: Surface {
        radius: 6
        fillFrom: TechTheme.graphite
        borderFrom: TechTheme.glassStroke
    }
}
