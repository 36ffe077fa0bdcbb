import QtQuick
import Reelcrate.Theme

/// One line of text, cut at its end where there is no room. Never read as markup: much of what is
/// shown comes from outside.
Text {
    id: root

    textFormat: Text.PlainText
    elide: Text.ElideRight
    maximumLineCount: 1
    color: TechTheme.text
    font.pixelSize: TechTheme.callout
    verticalAlignment: Text.AlignVCenter
    Accessible.ignored: true
}
