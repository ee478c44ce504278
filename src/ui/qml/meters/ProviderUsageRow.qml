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
    Accessible.description: [row.remainingText, row.inputText, row.outputText].join(" ").trim()

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

        HoverHandler {
            id: pointer
        }

        Hint {
            visible: pointer.hovered

            contentItem: UsageTokensCaption {
                remainingText: root.row.remainingText
                inputText: root.row.inputText
                outputText: root.row.outputText
            }
        }

        RowLayout {
            spacing: Theme.spaceXSmall + 1

            ProviderLogoView {
                Layout.preferredWidth: Theme.smallSymbolSize
                Layout.preferredHeight: Theme.smallSymbolSize
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
