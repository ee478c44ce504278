import QtQuick
import QtQuick.Layouts
import Tallyglass

/// What a section is about, with its symbol.
RowLayout {
    id: root

    required property string symbol
    required property string text

    spacing: Theme.spaceXSmall + 2

    SymbolIcon {
        Layout.preferredWidth: Theme.smallSymbolSize
        Layout.preferredHeight: Theme.smallSymbolSize
        name: root.symbol
        color: Theme.secondaryText
    }

    Text {
        Layout.fillWidth: true
        text: root.text
        color: Theme.text
        font.pixelSize: Theme.bodySize
        font.weight: Font.DemiBold
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
}
