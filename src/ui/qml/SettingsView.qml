pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Tallyglass

/// Everything that can be set, and what is known of the tools.
ColumnLayout {
    id: root

    required property SettingsViewModel viewModel

    // Of the column of names; wider only for fonts larger than the ordinary.
    readonly property real nameWidth: Math.max(52, Theme.bodySize * 4.3)

    spacing: Theme.spaceLarge

    SettingsSection {
        symbol: "terminal"
        title: Texts.text("settings.cliIntegration")
        Layout.fillWidth: true

        SettingsNote {
            text: Texts.text("settings.cliLocalDataNotice")
        }

        Repeater {
            model: root.viewModel.cliRows

            ColumnLayout {
                id: entry

                required property cliStatusRow modelData

                spacing: Theme.spaceSmall

                Separator {}

                CLIStatusRow {
                    status: entry.modelData
                    Layout.fillWidth: true
                }
            }
        }

        Separator {}

        RowLayout {
            spacing: Theme.spaceMedium

            SettingsNote {
                objectName: "apiStatus"
                text: root.viewModel.apiStatusText
            }

            TextButton {
                objectName: "recheck"
                symbol: "arrow.clockwise"
                text: Texts.text("settings.recheck")
                onClicked: root.viewModel.recheckCLIs()
                Layout.alignment: Qt.AlignTop
            }
        }
    }

    SettingsSection {
        Layout.fillWidth: true

        SettingsSwitch {
            objectName: "alertsEnabled"
            text: Texts.text("alerts.enable")
            checked: root.viewModel.alertsEnabled
            onToggled: root.viewModel.alertsEnabled = checked
        }

        RowLayout {
            spacing: Theme.spaceMedium

            Text {
                text: root.viewModel.thresholdText
                color: Theme.text
                font.pixelSize: Theme.bodySize
                Layout.preferredWidth: Math.max(110, implicitWidth)
            }

            SettingsSlider {
                objectName: "alertThreshold"
                from: root.viewModel.lowestThreshold
                to: root.viewModel.highestThreshold
                stepSize: root.viewModel.thresholdStep
                value: root.viewModel.alertThreshold
                onMoved: root.viewModel.alertThreshold = value
                Layout.fillWidth: true
                Accessible.name: root.viewModel.thresholdText
            }
        }
    }

    SettingsSection {
        title: Texts.text("budgets.section")
        Layout.fillWidth: true

        RowLayout {
            spacing: Theme.spaceMedium

            Item {
                Layout.preferredWidth: root.nameWidth
            }

            Repeater {
                model: root.viewModel.budgetLabels

                Text {
                    required property string modelData

                    text: modelData
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize
                    horizontalAlignment: Text.AlignRight
                    rightPadding: 6
                    Layout.preferredWidth: 100
                }
            }
        }

        Repeater {
            model: root.viewModel.budgetLines

            RowLayout {
                id: line

                required property budgetLine modelData

                spacing: Theme.spaceMedium

                Text {
                    text: line.modelData.name
                    color: Theme.text
                    font.pixelSize: Theme.bodySize
                    Layout.preferredWidth: root.nameWidth
                }

                BudgetInput {
                    objectName: "budget"
                    field: line.modelData.fiveHours
                }

                BudgetInput {
                    objectName: "budget"
                    field: line.modelData.week
                }
            }
        }

        SettingsSwitch {
            objectName: "countsAnswersOnce"
            text: Texts.text("settings.countsAnswersOnce")
            checked: root.viewModel.countsAnswersOnce
            onToggled: root.viewModel.countsAnswersOnce = checked
        }

        SettingsNote {
            text: Texts.text("settings.countsAnswersOnce.note")
        }
    }

    SettingsSection {
        symbol: "arrow.down.circle"
        title: Texts.text("update.section")
        Layout.fillWidth: true

        SettingsNote {
            text: Texts.text("update.settingsBody")
        }

        SettingsNote {
            visible: !root.viewModel.isUpdaterConfigured
            text: Texts.text("update.notConfigured")
        }

        RowLayout {
            spacing: Theme.spaceSmall

            TextButton {
                objectName: "checkForUpdates"
                text: Texts.text("update.check")
                enabled: root.viewModel.canCheckForUpdates
                onClicked: root.viewModel.checkForUpdates()
            }

            TextButton {
                objectName: "openSite"
                text: Texts.text("update.openSite")
                onClicked: root.viewModel.openSite()
            }
        }
    }

    SettingsSection {
        symbol: "rectangle.3.group"
        title: Texts.text("settings.widgetSection")
        Layout.fillWidth: true

        SettingsNote {
            text: Texts.text("settings.widgetNote")
        }

        SettingsSwitch {
            objectName: "launchAtLogin"
            text: Texts.text("settings.launchAtLogin")
            checked: root.viewModel.launchAtLogin
            onToggled: root.viewModel.launchAtLogin = checked
        }

        SettingsNote {
            objectName: "launchAtLoginError"
            text: root.viewModel.launchAtLoginError
            color: Theme.bad
        }
    }

    SettingsNote {
        text: root.viewModel.dataFolderText
        Layout.leftMargin: Theme.spaceXSmall
    }
}
