import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A figure with its symbol and name.
ColumnLayout {
    id: root

    required property string symbol
    required property string caption
    required property string text

    spacing: 2
    Layout.fillWidth: true
    Layout.preferredWidth: 1 // equal shares of the row
    Accessible.role: Accessible.StaticText
    Accessible.name: caption + " " + text

    RowLayout {
        spacing: Theme.spaceXSmall

        SymbolIcon {
            Layout.preferredWidth: Theme.smallSymbolSize
            Layout.preferredHeight: Theme.smallSymbolSize
            name: root.symbol
            color: Theme.secondaryText
        }

        Text {
            Layout.fillWidth: true
            text: root.caption
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    Text {
        objectName: "figure"
        Layout.fillWidth: true
        text: root.text
        color: Theme.text
        font.pixelSize: Theme.titleSize
        font.weight: Font.DemiBold
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Theme.captionSize
        Accessible.ignored: true
    }
}
