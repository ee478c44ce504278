import QtQuick
import QtQuick.Layouts
import Tallyglass

/// One provider in the selected window.
RowLayout {
    id: root

    required property providerRow row

    spacing: 14

    Accessible.role: Accessible.Grouping
    Accessible.name: row.name

    GaugeColumn {
        percent: root.row.usedShare
        text: root.row.usedText
        tint: root.row.tint
        caption: Texts.text("metric.usage")
    }

    GaugeColumn {
        percent: root.row.resetShare
        text: root.row.resetText
        tint: Theme.resetTint
        caption: Texts.text("metric.resetRemaining")
    }

    ColumnLayout {
        spacing: 4

        RowLayout {
            spacing: Theme.spaceXSmall + 1

            ProviderLogoView {
                implicitWidth: 13
                implicitHeight: 13
                provider: root.row.provider
            }

            Text {
                objectName: "providerName"
                Layout.fillWidth: true
                text: root.row.name
                color: Contrast.readable(root.row.tint, Theme.background)
                font.pixelSize: Theme.bodySize
                font.weight: Font.Medium
                elide: Text.ElideRight
            }
        }

        Text {
            objectName: "tokens"
            Layout.fillWidth: true
            text: root.row.tokensText
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
        }

        Text {
            objectName: "limit"
            Layout.fillWidth: true
            text: root.row.limitText
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            elide: Text.ElideRight
        }
    }
}
