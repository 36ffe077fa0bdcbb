import QtQuick
import Reelcrate.Theme

/// What a light card stands on.
Surface {
    id: root

    required property real cornerRadius
    required property int depth
    readonly property surfaceShadow shadow: TechTheme.queueShadow(depth)

    radius: cornerRadius
    fillFrom: TechTheme.queueSurfaceTop
    fillMiddle: TechTheme.queueSurfaceMiddle
    fillTo: TechTheme.queueSurfaceBottom
    borderFrom: TechTheme.white(0.42)
    borderMiddle: TechTheme.faded(TechTheme.gold, 0.22)
    borderTo: TechTheme.black(0.14)
    shadowColor: shadow.color
    shadowRadius: shadow.radius
    shadowDown: shadow.down
}
