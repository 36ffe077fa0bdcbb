import QtQuick
import Reelcrate.Theme

/// What a dark glass panel stands on.
Surface {
    id: root

    required property real cornerRadius
    required property int depth
    readonly property surfaceShadow shadow: TechTheme.techShadow(depth)

    radius: cornerRadius
    fillFrom: TechTheme.panelTop
    fillTo: TechTheme.panelBottom
    borderFrom: TechTheme.white(0.26)
    borderMiddle: TechTheme.faded(TechTheme.gold, 0.16)
    borderTo: TechTheme.black(0.28)
    shadowColor: shadow.color
    shadowRadius: shadow.radius
    shadowDown: shadow.down
}
