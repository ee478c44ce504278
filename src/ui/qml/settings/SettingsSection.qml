import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A card of the settings, below its heading if it has one. What it holds is stacked.
ColumnLayout {
    id: root

    property string symbol
    property string title
    default property alias content: card.data

    spacing: Theme.spaceSmall

    RowLayout {
        visible: root.title !== ""
        spacing: Theme.spaceSmall
        Layout.leftMargin: Theme.spaceXSmall

        SymbolIcon {
            visible: root.symbol !== ""
            name: root.symbol
            color: Theme.secondaryText
        }

        Text {
            text: root.title
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }

    Rectangle {
        implicitHeight: card.implicitHeight + 2 * Theme.spaceMedium
        radius: Theme.cornerRadius
        color: Theme.cardFill
        border.color: Theme.separator
        Layout.fillWidth: true

        ColumnLayout {
            id: card

            anchors.fill: parent
            anchors.margins: Theme.spaceMedium
            spacing: Theme.spaceSmall
        }
    }
}
