import QtQuick
import QtQuick.Controls.Basic
import Reelcrate.Theme

/// A field for one line of text.
TextField {
    id: root

    implicitHeight: 38
    leftPadding: 12
    rightPadding: 12
    color: TechTheme.text
    placeholderTextColor: TechTheme.faded(TechTheme.text, 0.78)
    selectionColor: TechTheme.gold
    selectedTextColor: TechTheme.ink
    selectByMouse: true
    font.pixelSize: 13
    verticalAlignment: TextInput.AlignVCenter

    background: FieldSurface {
        isFocused: root.activeFocus
    }
}
