import QtQuick
import Reelcrate.Theme

/// Shows and hides what it names.
ThemedButton {
    id: root

    required property bool isOpen

    leftPadding: 4
    rightPadding: 8
    topPadding: 3
    bottomPadding: 3
    symbol: isOpen ? "chevron.down" : "chevron.right"
    symbolSize: 9
    labelSize: TechTheme.caption
    labelColor: hovered ? TechTheme.text : TechTheme.muted
    Accessible.checkable: true
    Accessible.checked: isOpen
}
