import QtQuick
import Reelcrate.Theme

/// A small label above the queue.
Surface {
    id: root

    required property string text
    required property string systemName
    property bool emphasized: false
    readonly property color labelColor: emphasized ? TechTheme.ink : TechTheme.queueText

    implicitWidth: label.width + 18
    implicitHeight: label.height + 10
    radius: height / 2
    fillFrom: emphasized ? TechTheme.goldTop : TechTheme.white(0.78)
    fillTo: emphasized ? TechTheme.goldBottom : TechTheme.chipBottom
    borderFrom: TechTheme.white(emphasized ? 0.42 : 0.56)
    shadowColor: emphasized ? TechTheme.faded(TechTheme.gold, 0.24) : TechTheme.black(0.08)
    shadowRadius: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Row {
        id: label

        x: 9
        y: 5
        spacing: 5

        Symbol {
            y: Math.round((label.height - height) / 2)
            name: root.systemName
            fontSize: TechTheme.caption2
            color: root.labelColor
        }
        PlainText {
            text: root.text
            color: root.labelColor
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
        }
    }
}
