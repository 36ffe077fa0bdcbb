import QtQuick
import Reelcrate.Theme

/// Names a link's source.
Surface {
    id: root

    required property string label
    required property string symbol
    required property color tint

    implicitWidth: content.width + 14
    implicitHeight: content.height + 8
    radius: height / 2
    fillFrom: TechTheme.faded(tint, 0.115)
    borderFrom: TechTheme.faded(tint, 0.24)

    Row {
        id: content

        x: 7
        y: 4
        spacing: 5

        Symbol {
            y: Math.round((content.height - height) / 2)
            name: root.symbol
            fontSize: TechTheme.caption2
            color: root.tint
        }
        PlainText {
            text: root.label
            color: root.tint
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
        }
    }
}
