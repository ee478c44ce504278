import QtQuick
import QtQuick.Layouts
import Tallyglass

/// One tool: whether it was found, where it is and keeps its data, and what to do.
Column {
    id: root

    required property cliStatusRow status

    spacing: 2
    Accessible.role: Accessible.Grouping
    Accessible.name: status.name + " " + status.stateText

    RowLayout {
        width: root.width
        spacing: Theme.spaceSmall

        Text {
            text: root.status.name
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.Medium
        }

        Text {
            text: root.status.executableName
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.family: "monospace"
            Layout.fillWidth: true
        }

        SymbolIcon {
            name: root.status.isDetected ? "checkmark.circle.fill" : "exclamationmark.triangle.fill"
            color: state.color
        }

        Text {
            id: state

            text: root.status.stateText
            color: root.status.isDetected ? Theme.good : Theme.warning
            font.pixelSize: Theme.captionSize
            font.weight: Font.Medium
        }
    }

    SettingsNote {
        width: root.width
        text: root.status.detectedPath
    }

    SettingsNote {
        width: root.width
        text: root.status.installHint
    }

    SettingsNote {
        width: root.width
        text: root.status.dataText
    }

    SettingsNote {
        width: root.width
        text: root.status.integrationHint
    }
}
