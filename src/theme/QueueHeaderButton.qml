import QtQuick
import Reelcrate.Theme

/// A light button of the header.
ThemedButton {
    id: root

    labelColor: enabled ? TechTheme.queueText : TechTheme.queueMuted
    leftPadding: 14
    rightPadding: 14
    topPadding: 9
    bottomPadding: 9
    opacity: enabled ? 1 : 0.62

    background: Surface {
        radius: root.cornerRadius
        fillFrom: root.down ? TechTheme.pressedLightTop : TechTheme.white(0.96)
        fillTo: root.down ? TechTheme.pressedLightBottom : TechTheme.lightBottom
        borderFrom: TechTheme.black(root.enabled ? 0.14 : 0.08)
        shadowColor: TechTheme.black(root.down ? 0.06 : 0.12)
        shadowRadius: root.down ? 3 : 8
        shadowDown: root.down ? 1 : 4
    }
}
