import QtQuick
import Reelcrate.Theme

/// A round golden button of one symbol. The keyboard gets to what it does by way of its row.
ThemedButton {
    id: root

    required property string systemName

    implicitWidth: 36
    implicitHeight: 36
    padding: 0
    cornerRadius: 18
    focusPolicy: Qt.NoFocus
    Accessible.ignored: true
    symbol: systemName
    symbolSize: 15
    labelColor: enabled ? TechTheme.text : TechTheme.dimmed

    background: Surface {
        radius: root.cornerRadius
        fillFrom: root.enabled ? TechTheme.goldTop : TechTheme.white(0.06)
        fillTo: root.enabled ? TechTheme.goldBottom : TechTheme.white(0.03)
        borderFrom: TechTheme.white(root.enabled ? 0.32 : 0.08)
        shadowColor: TechTheme.faded(TechTheme.gold, root.enabled ? 0.28 : 0)
        shadowRadius: 10
        shadowDown: 5
    }
}
