pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Tallyglass

/// Everything that the window at the menu-bar icon shows. What has nothing to say is left out.
Item {
    id: root

    required property PanelViewModel viewModel
    readonly property bool isOpen: Window.visibility !== Window.Hidden

    signal settingsRequested
    signal quitRequested

    implicitWidth: Math.max(360, Theme.bodySize * 27)
    implicitHeight: column.implicitHeight + 2 * Theme.spaceLarge
    onIsOpenChanged: if (isOpen)
        viewModel.update()

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: Theme.spaceLarge
        spacing: Theme.spaceMedium

        PanelHeader {
            viewModel: root.viewModel
            onSettingsRequested: root.settingsRequested()
        }

        Notice {
            objectName: "updateNotice"
            Layout.fillWidth: true
            visible: root.viewModel.updateNotice.isShown
            color: Theme.updateFill
            symbol: "arrow.down.circle.fill"
            symbolColor: Theme.good
            title: root.viewModel.updateNotice.title
            body: Texts.text("update.body")

            Text {
                Layout.fillWidth: true
                visible: root.viewModel.updateNotice.releaseNotes !== ""
                text: Texts.text("update.releaseNotes.title")
                color: Theme.text
                font.pixelSize: Theme.captionSize
                font.weight: Font.DemiBold
            }

            Text {
                objectName: "releaseNotes"
                Layout.fillWidth: true
                visible: text !== ""
                text: root.viewModel.updateNotice.releaseNotes
                textFormat: Text.PlainText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                wrapMode: Text.Wrap
                maximumLineCount: 6
                elide: Text.ElideRight
            }

            RowLayout {
                spacing: Theme.spaceSmall

                TextButton {
                    objectName: "releaseNotesLink"
                    visible: root.viewModel.updateNotice.hasReleaseNotesUrl
                    symbol: "doc.text"
                    text: Texts.text("update.releaseNotes.link")
                    onClicked: Qt.openUrlExternally(root.viewModel.updateNotice.releaseNotesUrl)
                }

                TextButton {
                    objectName: "update"
                    visible: root.viewModel.isUpdaterConfigured
                    prominent: true
                    text: Texts.text("update.action")
                    enabled: root.viewModel.canCheckForUpdates
                    onClicked: root.viewModel.checkForUpdates()
                }

                TextButton {
                    objectName: "openSite"
                    visible: !root.viewModel.isUpdaterConfigured
                    prominent: true
                    text: Texts.text("update.openSite")
                    onClicked: root.viewModel.openSite()
                }
            }
        }

        Notice {
            objectName: "tokenNotice"
            Layout.fillWidth: true
            visible: root.viewModel.tokenTitle !== ""
            color: Theme.warningFill
            symbol: "key.slash"
            symbolColor: Theme.warning
            title: root.viewModel.tokenTitle
            body: root.viewModel.tokenBody

            TextButton {
                objectName: "refreshToken"
                text: Texts.text("token.refresh")
                enabled: root.viewModel.canRefreshToken
                onClicked: root.viewModel.refreshToken()
            }
        }

        Notice {
            objectName: "cliNotice"
            Layout.fillWidth: true
            visible: root.viewModel.missingCLIsText !== ""
            color: Theme.warningFill
            symbol: "exclamationmark.triangle.fill"
            symbolColor: Theme.warning
            title: root.viewModel.missingCLIsText
            body: Texts.text("menu.cliNoticeBody")

            TextButton {
                objectName: "cliIntegration"
                symbol: "terminal"
                text: Texts.text("settings.cliIntegration")
                onClicked: root.settingsRequested()
            }
        }

        RowLayout {
            spacing: Theme.spaceMedium

            Text {
                text: Texts.text("menu.period")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
            }

            SegmentedPicker {
                objectName: "window"
                Layout.fillWidth: true
                labels: root.viewModel.windowLabels
                currentIndex: root.viewModel.windowIndex
                name: Texts.text("menu.period")
                onChosen: index => root.viewModel.windowIndex = index
            }
        }

        Repeater {
            model: root.viewModel.providerRows.length

            ProviderUsageRow {
                required property int index

                objectName: "providerRow"
                Layout.fillWidth: true
                row: root.viewModel.providerRows[index]
            }
        }

        Separator {}

        TopModels {
            viewModel: root.viewModel
        }

        RowLayout {
            spacing: Theme.spaceSmall

            Metric {
                objectName: "total"
                symbol: "sum"
                caption: Texts.text("summary.total")
                text: root.viewModel.totalText
            }

            Metric {
                objectName: "cache"
                symbol: "memorychip"
                caption: Texts.text("metric.cache")
                text: root.viewModel.cacheText
            }

            Metric {
                objectName: "events"
                symbol: "number"
                caption: Texts.text("metric.events")
                text: root.viewModel.eventsText
            }
        }

        Separator {}

        HistorySection {
            viewModel: root.viewModel
        }

        Separator {}

        RowLayout {
            Text {
                objectName: "reset"
                Layout.fillWidth: true
                text: root.viewModel.resetText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                elide: Text.ElideRight
            }

            TextButton {
                objectName: "quit"
                text: Texts.text("common.exit")
                onClicked: root.quitRequested()
            }
        }
    }
}
