import QtQuick
import Reelcrate.Theme

/// The golden button that starts the downloads.
ThemedButton {
    id: root

    labelColor: TechTheme.ink
    labelWeight: Font.Bold
    leftPadding: 14
    rightPadding: 14
    topPadding: 9
    bottomPadding: 9
    opacity: enabled ? 1 : 0.48

    background: Surface {
        radius: root.cornerRadius
        fillFrom: root.down ? TechTheme.pressedGoldTop : TechTheme.actionGoldTop
        fillTo: root.down ? TechTheme.pressedDownloadBottom : TechTheme.actionGoldBottom
        borderFrom: TechTheme.black(root.enabled ? 0.12 : 0.08)
        shadowColor: TechTheme.faded(TechTheme.gold, root.enabled ? 0.28 : 0.08)
        shadowRadius: root.down ? 4 : 10
        shadowDown: root.down ? 2 : 5
    }
}
