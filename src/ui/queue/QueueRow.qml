import QtQuick
import Reelcrate.Theme

/// The card of one row. Shows what it is given and says what is done to it.
Item {
    id: root

    required property string itemID
    required property string title
    required property string wholeTitle
    required property string duration
    required property string sourceLabel
    required property string sourceSymbol
    required property color sourceTint
    required property string thumbnail
    required property string statusLabel
    required property color statusLabelColor
    required property string statusIcon
    required property string headline
    required property color headlineColor
    required property string subtitle
    required property string wholeSubtitle
    required property color statusFrom
    required property color statusTo
    required property color statusShadow
    required property color statusStroke
    required property color accentColor
    required property bool isRaised
    required property bool isRunning
    required property real progress
    required property string progressText
    required property bool isSelected
    required property bool actionIsBusy
    required property string actionSymbol
    required property string actionHelp
    required property bool actionEnabled

    /// With Qt's keyboard modifiers of that moment.
    signal clicked(int modifiers)
    signal acted
    signal menuRequested(real x, real y)

    /// Out of sight until another row is shown with it: nothing may move meanwhile.
    property bool isPooled: false
    /// What is left of the line beside thumbnail, status window, action and the gaps.
    readonly property real titleWidth: Math.max(230, Math.min(520, line.width - 444))

    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false

    implicitHeight: 14 + line.height + (isRunning ? 10 + progressLine.height : 0) + 14

    QueueSurface {
        anchors.fill: parent
        cornerRadius: 13
        depth: root.isRaised ? SurfaceDepth.High : SurfaceDepth.Medium
    }
    Rectangle {
        anchors.fill: parent
        radius: 13
        visible: root.isSelected
        color: TechTheme.faded(TechTheme.gold, 0.10)
    }
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        // A drag across the cards is not meant to scroll them.
        preventStealing: true
        onClicked: mouse => {
            if (mouse.button === Qt.RightButton)
                root.menuRequested(mouse.x, mouse.y);
            else
                root.clicked(mouse.modifiers);
        }
        // Without this, the second click of two would come as a click of its own.
        onDoubleClicked: {}
    }
    Item {
        id: line

        x: 16
        y: 14
        width: root.width - 30
        height: Math.max(44, status.height)

        QueueThumbnail {
            id: thumbnail

            anchors.verticalCenter: parent.verticalCenter
            source: root.thumbnail
            symbol: root.sourceSymbol
            tint: root.sourceTint
        }
        QueueRowTitle {
            anchors.verticalCenter: parent.verticalCenter
            x: 72
            width: root.titleWidth
            title: root.title
            wholeTitle: root.wholeTitle
            duration: root.duration
            sourceLabel: root.sourceLabel
            sourceSymbol: root.sourceSymbol
            sourceTint: root.sourceTint
            statusLabel: root.statusLabel
            statusLabelColor: root.statusLabelColor
        }
        QueueStatusWindow {
            id: status

            anchors.verticalCenter: parent.verticalCenter
            x: 72 + root.titleWidth + 14
            // On a screen that is smaller than the least window.
            width: Math.min(280, line.width - 164 - root.titleWidth)
            icon: root.statusIcon
            headline: root.headline
            headlineColor: root.headlineColor
            subtitle: root.subtitle
            wholeSubtitle: root.wholeSubtitle
            fillFrom: root.statusFrom
            fillTo: root.statusTo
            borderFrom: root.statusStroke
            shadowColor: root.statusShadow
        }
        QueueRowAction {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            isBusy: root.actionIsBusy && !root.isPooled
            symbol: root.actionSymbol
            help: root.actionHelp
            isEnabled: root.actionEnabled
            onActed: root.acted()
        }
    }
    QueueProgressLine {
        id: progressLine

        anchors.top: line.bottom
        anchors.topMargin: 10
        x: 16 + 72
        width: root.width - 30 - 72
        visible: root.isRunning
        value: root.progress
        text: root.progressText
    }
    Surface {
        y: 12
        width: 5
        height: root.height - 24
        radius: 3
        fillFrom: root.accentColor
        shadowColor: TechTheme.faded(root.accentColor, 0.26)
        shadowRadius: 7
        shadowDown: 2
    }
    Surface {
        anchors.fill: parent
        radius: 13
        visible: root.isSelected
        borderWidth: 1.4
        borderFrom: TechTheme.faded(TechTheme.gold, 0.62)
    }
}
