import QtQuick
import Reelcrate.Theme

/// What a text field stands on.
Surface {
    id: root

    property bool isFocused: false

    radius: 11
    fillFrom: TechTheme.fieldTop
    fillTo: TechTheme.fieldBottom
    borderFrom: TechTheme.glassStroke

    FocusRing {
        cornerRadius: root.radius
        visible: root.isFocused
    }
}
