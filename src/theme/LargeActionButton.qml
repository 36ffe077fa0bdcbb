import QtQuick
import Reelcrate.Theme

/// The large golden button. Its label is its own: `contentItem`.
ThemedButton {
    id: root

    labelColor: TechTheme.ink
    cornerRadius: 10
    leftPadding: 16
    rightPadding: 16
    topPadding: 15
    bottomPadding: 15

    // Its label tells what goes on meanwhile, and stays readable.
    background: Surface {
        opacity: root.enabled ? 1 : 0.62
        radius: root.cornerRadius
        fillFrom: root.down ? TechTheme.pressedGoldTop : TechTheme.actionGoldTop
        fillTo: root.down ? TechTheme.pressedGoldBottom : TechTheme.actionGoldBottom
        borderFrom: TechTheme.white(0.36)
        shadowColor: TechTheme.faded(TechTheme.gold, root.down ? 0.16 : 0.34)
        shadowRadius: root.down ? 7 : 18
        shadowDown: root.down ? 3 : 10
    }
}
