#pragma once

#include "platform/Desktop.h"
#include "ui/PanelViewModel.h"
#include "ui/SettingsViewModel.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QQmlEngine;
class QQuickView;

namespace tallyglass {

class PanelWindow;

/// What the user has of the program: the icon in the tray, the panel at it, and the settings.
/// The windows are made when they are first opened: most of the time nobody looks.
class MenuBarExtra : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")

public:
    MenuBarExtra(UsageModel &model, AppUpdater &updater, Ports &ports, QObject *parent = nullptr);
    ~MenuBarExtra() override;

    /// Opens the panel as an ordinary window if no tray appears within a moment.
    void openWithoutTray();

    /// Opens the panel at the icon, or as an ordinary window where there is none.
    Q_INVOKABLE void openPanel();
    Q_INVOKABLE void closePanel();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void closeSettings();
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void quit();

    /// Null before the first opening.
    QQuickView *panel() const;
    QQuickView *settings() const { return m_settings.get(); }

private:
    void togglePanel();
    void updateToolTip();
    QQmlEngine &engine();

    UsageModel &m_model;
    Ports &m_ports;
    PanelViewModel m_panelViewModel;
    SettingsViewModel m_settingsViewModel;
    std::unique_ptr<MenuBarItem> m_item;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<PanelWindow> m_panel;
    std::unique_ptr<QQuickView> m_settings;
};

} // namespace tallyglass
