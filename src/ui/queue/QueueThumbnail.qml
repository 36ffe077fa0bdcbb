import QtQuick
import Reelcrate.Theme

/// The picture of a row, or its source's symbol until there is one.
Surface {
    id: root

    required property string source
    required property string symbol
    required property color tint

    width: 58
    height: 44
    radius: 7
    fillFrom: TechTheme.faded(tint, 0.24)
    fillTo: TechTheme.white(0.08)

    Symbol {
        anchors.centerIn: parent
        width: 16
        height: 16
        visible: picture.status !== Image.Ready
        name: root.symbol
        fontSize: TechTheme.title3
        color: root.tint
    }
    Image {
        id: picture

        anchors.fill: parent
        source: root.source
        sourceSize.width: 116
        sourceSize.height: 88
        asynchronous: true
    }
    Surface {
        anchors.fill: parent
        radius: 7
        borderFrom: TechTheme.white(0.18)
    }
}
