import QtQuick
import Reelcrate.Theme

/// A symbol, a text, or both side by side, in the middle of the room there is.
Item {
    id: root

    required property string text
    required property string symbol
    required property int symbolSize
    required property color color
    required property int size
    required property int weight

    implicitWidth: label.implicitWidth
    implicitHeight: label.implicitHeight

    Row {
        id: label

        x: Math.round((root.width - width) / 2)
        y: Math.round((root.height - height) / 2)
        spacing: 6

        Symbol {
            y: Math.round((label.height - height) / 2)
            visible: root.symbol !== ""
            name: root.symbol
            fontSize: root.symbolSize
            color: root.color
        }
        PlainText {
            y: Math.round((label.height - height) / 2)
            visible: root.text !== ""
            text: root.text
            color: root.color
            font.pixelSize: root.size
            font.weight: root.weight
        }
    }
}
