import QtQuick

/// Shows the tooltip of its sibling `button` also while that is disabled: such a control is not
/// hovered, but then its tooltip is wanted most.
Item {
    id: root

    required property ThemedButton button

    anchors.fill: button
    visible: !button.enabled

    HoverHandler {
        id: pointer
    }
    HelpTip {
        text: root.button.help
        visible: pointer.hovered
    }
}
