import QtQuick
import Reelcrate.Theme

/// A glass button on the dark side of the window.
ThemedButton {
    id: root

    leftPadding: 14
    rightPadding: 14
    topPadding: 9
    bottomPadding: 9
    opacity: enabled ? 1 : 0.5

    background: Surface {
        radius: root.cornerRadius
        fillFrom: root.down ? TechTheme.white(0.10) : TechTheme.fieldTop
        fillTo: root.down ? TechTheme.white(0.04) : TechTheme.fieldBottom
        borderFrom: TechTheme.glassStroke
        shadowColor: TechTheme.black(root.down ? 0.12 : 0.24)
        shadowRadius: root.down ? 4 : 9
        shadowDown: root.down ? 2 : 5
    }
}
