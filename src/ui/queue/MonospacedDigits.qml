pragma ComponentBehavior: Bound

import QtQuick
import Reelcrate.Theme

/// A number whose digits stay in their places while it changes: each is as wide as the widest.
Row {
    id: root

    required property string text

    Repeater {
        model: root.text.length

        PlainText {
            required property int index

            width: index < root.text.length - 1 ? digit.advanceWidth : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            text: root.text.charAt(index)
            color: TechTheme.queueText
            font: digit.font
        }
    }
    TextMetrics {
        id: digit

        text: "0"
        font.pixelSize: TechTheme.caption
        font.weight: Font.Bold
    }
}
