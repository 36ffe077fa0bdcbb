import QtQuick
import Reelcrate.Theme

/// A bar whose fill never disappears. `value` is a fraction; what is beyond 0 to 1 counts as that.
Item {
    id: root

    required property real value
    required property color tint
    readonly property real fillWidth: Math.max(8, Math.round(Math.min(1, Math.max(0, value)) * width))

    implicitHeight: 10
    height: 10

    Surface {
        anchors.fill: parent
        radius: 5
        vertical: true
        fillFrom: TechTheme.black(0.12)
        fillTo: TechTheme.white(0.70)
        borderFrom: TechTheme.black(0.10)
    }
    Surface {
        width: root.fillWidth
        height: parent.height
        radius: 5
        fillFrom: TechTheme.white(0.65)
        fillMiddle: root.tint
        fillTo: TechTheme.ember
        shadowColor: TechTheme.faded(root.tint, 0.30)
        shadowRadius: 7
        shadowDown: 1

        Surface {
            width: parent.width
            height: 4
            radius: 2
            vertical: true
            fillFrom: TechTheme.white(0.42)
            fillTo: TechTheme.white(0)
        }
    }
}
