import QtQuick
import Reelcrate.Theme

/// Where a row comes from, how it stands, how long it plays, and what it is called.
Column {
    id: root

    required property string title
    required property string wholeTitle
    required property string duration
    required property string sourceLabel
    required property string sourceSymbol
    required property color sourceTint
    required property string statusLabel
    required property color statusLabelColor

    spacing: 5

    Row {
        id: marks

        spacing: 7

        QueueSourceBadge {
            label: root.sourceLabel
            symbol: root.sourceSymbol
            tint: root.sourceTint
        }
        PlainText {
            y: Math.round((marks.height - height) / 2)
            text: root.statusLabel
            color: root.statusLabelColor
            font.pixelSize: TechTheme.caption
            font.weight: Font.Bold
        }
        PlainText {
            y: Math.round((marks.height - height) / 2)
            width: Math.min(implicitWidth, root.width - x)
            visible: text !== ""
            text: root.duration
            color: TechTheme.queueMuted
            font.pixelSize: TechTheme.caption
            font.weight: Font.DemiBold
        }
    }
    PlainText {
        id: line

        objectName: "title"
        width: root.width
        text: root.title
        color: TechTheme.queueText
        font.weight: Font.DemiBold

        HoverHandler {
            id: pointer
        }
        HelpTip {
            text: root.wholeTitle
            visible: pointer.hovered && line.truncated
        }
    }
}
