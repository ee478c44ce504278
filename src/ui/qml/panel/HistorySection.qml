pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Tallyglass

/// How the use went: a curve for each provider, and its figures under the pointer.
ColumnLayout {
    id: root

    required property PanelViewModel viewModel

    spacing: Theme.spaceSmall

    RowLayout {
        SectionHeading {
            symbol: "chart.xyaxis.line"
            text: Texts.text("history.section")
        }

        SegmentedPicker {
            objectName: "historyRange"
            labels: root.viewModel.historyLabels
            currentIndex: root.viewModel.historyIndex
            name: Texts.text("history.section")
            onChosen: index => root.viewModel.historyIndex = index
        }
    }

    Item {
        Layout.fillWidth: true
        implicitHeight: 110

        HistoryChart {
            id: chart

            objectName: "chart"
            anchors.fill: parent
            visible: !root.viewModel.history.isEmpty
            history: root.viewModel.history
            pointerX: pointer.hovered ? pointer.point.position.x : -1
            textColor: Theme.secondaryText
            gridColor: Theme.separator
            textSize: Theme.captionSize
            Accessible.role: Accessible.Chart
            Accessible.name: Texts.text("history.section") + " " + root.viewModel.history.summaryText

            HoverHandler {
                id: pointer
            }
        }

        Text {
            objectName: "noHistory"
            anchors.fill: parent
            visible: root.viewModel.history.isEmpty
            text: Texts.text("history.empty")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
        }
    }

    RowLayout {
        visible: !root.viewModel.history.isEmpty
        spacing: Theme.spaceMedium

        Repeater {
            model: chart.legend.length

            RowLayout {
                id: entry

                required property int index
                readonly property historyLegendRow row: chart.legend[index]

                spacing: Theme.spaceXSmall

                Rectangle {
                    implicitWidth: 8
                    implicitHeight: 8
                    radius: 4
                    color: entry.row.tint
                }

                Text {
                    objectName: "legend"
                    text: entry.row.text
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize
                }
            }
        }

        Text {
            objectName: "pointedTime"
            Layout.fillWidth: true
            text: chart.pointedTime
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignRight
        }
    }
}
