import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// A tooltip.
ToolTip {
    id: root

    delay: 700
    padding: 7
    // A long text wraps.
    contentWidth: Math.min(420, implicitContentWidth)
    contentItem: PlainText {
        text: root.text
        wrapMode: Text.Wrap
        maximumLineCount: 14
        color: TechTheme.text
        font.pixelSize: 11
    }
    background: Surface {
        radius: 6
        fillFrom: TechTheme.graphite
        borderFrom: TechTheme.glassStroke
    }
}
