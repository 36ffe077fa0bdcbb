import QtQuick
import Reelcrate.Theme

/// What happens to a row.
Surface {
    id: root

    objectName: "statusWindow"

    required property string icon
    required property string headline
    required property color headlineColor
    required property string subtitle

    width: 280
    height: Math.round(texts.height) + 20
    radius: 10
    shadowRadius: 12
    shadowDown: 6

    Symbol {
        x: 14
        anchors.verticalCenter: parent.verticalCenter
        name: root.icon
        fontSize: TechTheme.callout
        color: root.headlineColor
    }
    Column {
        id: texts

        x: 36
        y: 10
        width: root.width - x - 14
        spacing: 2

        PlainText {
            objectName: "headline"
            width: parent.width
            text: root.headline
            color: root.headlineColor
            font.pixelSize: TechTheme.title3
            font.weight: Font.ExtraBold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Math.ceil(TechTheme.title3 * 0.58)
        }
        PlainText {
            objectName: "subtitle"
            width: parent.width
            visible: text !== ""
            text: root.subtitle
            color: TechTheme.queueMuted
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Math.ceil(TechTheme.caption * 0.75)
        }
    }
    // The light that falls on the upper edge.
    Surface {
        x: 1
        width: root.width - 2
        height: 10
        radius: 9
        vertical: true
        fillFrom: TechTheme.white(0.48)
        fillTo: TechTheme.white(0)
    }
}
