pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Tallyglass

/// The models that were used most, with whose tool.
ColumnLayout {
    id: root

    required property PanelViewModel viewModel

    spacing: Theme.spaceXSmall

    SectionHeading {
        symbol: "cpu"
        text: Texts.text("metric.topModels")
    }

    Repeater {
        model: root.viewModel.topModels

        RowLayout {
            id: entry

            required property modelRow modelData

            spacing: Theme.spaceXSmall + 2
            Accessible.role: Accessible.StaticText
            Accessible.name: modelData.name + " " + modelData.tokensText

            ProviderLogoView {
                Layout.preferredWidth: Theme.smallSymbolSize
                Layout.preferredHeight: Theme.smallSymbolSize
                provider: entry.modelData.provider
            }

            Text {
                objectName: "modelName"
                Layout.fillWidth: true
                text: entry.modelData.name
                textFormat: Text.PlainText
                color: Theme.text
                font.pixelSize: Theme.captionSize
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }

            Text {
                text: entry.modelData.tokensText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                Accessible.ignored: true
            }
        }
    }

    Text {
        objectName: "noModels"
        visible: root.viewModel.topModels.length === 0
        text: Texts.text("metric.noModelInfo")
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
    }
}
