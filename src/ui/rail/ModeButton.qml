import QtQuick
import Reelcrate.Theme

/// One of the modes; the chosen one is golden.
ThemedButton {
    id: root

    required property bool isChosen

    implicitHeight: 34
    cornerRadius: 9
    labelColor: isChosen ? TechTheme.ink : TechTheme.text
    labelWeight: Font.Bold
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: isChosen

    background: Surface {
        radius: root.cornerRadius
        fillFrom: root.isChosen ? TechTheme.goldTop : TechTheme.fieldTop
        fillTo: root.isChosen ? TechTheme.goldBottom : TechTheme.fieldBottom
        borderFrom: root.isChosen ? TechTheme.white(0.30) : TechTheme.glassStroke
        shadowColor: root.isChosen ? TechTheme.faded(TechTheme.gold, 0.24) : TechTheme.black(0.12)
        shadowRadius: root.isChosen ? 10 : 5
        shadowDown: root.isChosen ? 5 : 2
    }
}
