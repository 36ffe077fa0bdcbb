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
    /// What the subtitle may be the beginning of.
    property string wholeSubtitle
    /// There is more to it than the beginning.
    readonly property bool tells: wholeSubtitle !== "" && wholeSubtitle !== subtitle

    width: 280
    // The same for one line and two: a card that changes its height moves all below it.
    height: Math.round(firstLine.height + texts.spacing + secondLine.height) + 20
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
        anchors.verticalCenter: parent.verticalCenter
        width: root.width - x - 14
        spacing: 2

        PlainText {
            id: headline

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
            id: subtitle

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
    FontMetrics {
        id: firstLine

        font.pixelSize: TechTheme.title3
        font.weight: Font.ExtraBold
    }
    FontMetrics {
        id: secondLine

        font.pixelSize: TechTheme.caption
        font.weight: Font.Bold
    }
    // The light that falls on the upper edge: the upper part of a shape with the window's corners.
    Item {
        x: 1
        y: 1
        width: root.width - 2
        height: 10
        clip: true

        Surface {
            width: parent.width
            height: 2 * parent.height
            radius: root.radius - 1
            vertical: true
            fillFrom: TechTheme.white(0.48)
            fillMiddle: TechTheme.white(0)
            fillTo: TechTheme.white(0)
        }
    }
    HoverHandler {
        id: pointer
    }
    HelpTip {
        text: root.tells || subtitle.truncated ? root.wholeSubtitle || root.subtitle : root.headline
        visible: pointer.hovered && (root.tells || headline.truncated || subtitle.truncated)
    }
}
