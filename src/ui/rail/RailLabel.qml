import QtQuick
import Reelcrate.Theme

/// The title of a section of the control rail.
PlainText {
    topPadding: 6
    color: TechTheme.muted
    font.weight: Font.DemiBold
}
