import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// What all buttons have in common: the pressed scale, the focus ring for the keyboard, the tooltip
/// and the name that assistive technology reads. A click leaves the keyboard where it is.
AbstractButton {
    id: root

    property string help
    property string symbol
    property color labelColor: TechTheme.text
    property int labelSize: TechTheme.callout
    property int labelWeight: Font.DemiBold
    property int symbolSize: labelSize
    property real cornerRadius: 8
    /// Of a question: shows that Return presses it, however the question came up.
    property bool isDefault: false

    focusPolicy: Qt.TabFocus
    scale: down ? 0.985 : 1
    Accessible.role: Accessible.Button
    Accessible.name: text || help
    Accessible.description: help
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    contentItem: ButtonLabel {
        text: root.text
        symbol: root.symbol
        symbolSize: root.symbolSize
        color: root.labelColor
        size: root.labelSize
        weight: root.labelWeight
    }

    FocusRing {
        cornerRadius: root.cornerRadius
        visible: root.activeFocus && (TechTheme.keyboardLeads || root.isDefault)
    }
    HelpTip {
        text: root.help
        visible: root.hovered && root.help !== ""
    }
}
