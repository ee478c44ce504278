#include "ui/MenuBarExtra.h"

#include "model/DisplayTexts.h"
#include "platform/Desktop.h"
#include "services/UsageModel.h"
#include "ui/AppIcon.h"
#include "ui/PanelWindow.h"
#include "update/AppUpdater.h"

#include <QCoreApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>
#include <QTimer>

#include <chrono>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

// A session that has just begun may bring up its tray after us.
constexpr auto waitForTray = 2s;

constexpr QSize ordinarySettings(480, 720);
constexpr QSize smallestSettings(420, 240);

QUrl qmlFile(const char *name)
{
    return {QStringLiteral("qrc:/qt/qml/Tallyglass/qml/") + QString::fromLatin1(name)};
}

} // namespace

MenuBarExtra::MenuBarExtra(UsageModel &model, AppUpdater &updater, Ports &ports, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_ports(ports)
    , m_panelViewModel(model, updater, *ports.defaults, *ports.clock)
    , m_settingsViewModel(model, updater, ports)
    , m_item(makeMenuBarItem(menuBarIcon()))
{
    connect(m_item.get(), &MenuBarItem::clicked, this, &MenuBarExtra::togglePanel);
    connect(m_item.get(), &MenuBarItem::openChosen, this, &MenuBarExtra::openPanel);
    connect(m_item.get(), &MenuBarItem::refreshChosen, this, &MenuBarExtra::refresh);
    connect(m_item.get(), &MenuBarItem::settingsChosen, this, &MenuBarExtra::openSettings);
    connect(m_item.get(), &MenuBarItem::quitChosen, this, &MenuBarExtra::quit);
    connect(m_item.get(), &MenuBarItem::appeared, this, &MenuBarExtra::closePanel);
    connect(ports.notifier.get(), &Notifier::clicked, this, &MenuBarExtra::openPanel);

    connect(&m_panelViewModel, &PanelViewModel::changed, this, &MenuBarExtra::updateToolTip);
    updateToolTip();
}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::openWithoutTray()
{
    QTimer::singleShot(waitForTray, this, [this] {
        if (!m_item->isShown())
            openPanel();
    });
}

void MenuBarExtra::openPanel()
{
    if (!m_panel) {
        m_panel = std::make_unique<PanelWindow>(
            engine(), qmlFile("PanelScene.qml"),
            QVariantMap{{QStringLiteral("extra"), QVariant::fromValue(this)},
                        {QStringLiteral("viewModel"), QVariant::fromValue(&m_panelViewModel)}});
    }
    m_panelViewModel.update();
    if (m_item->isShown())
        m_panel->openAt(m_item->area());
    else
        m_panel->openAsWindow();
}

void MenuBarExtra::closePanel()
{
    if (m_panel)
        m_panel->hide();
}

void MenuBarExtra::togglePanel()
{
    if (m_panel && m_panel->isVisible())
        closePanel();
    else if (!m_panel || !m_panel->hasJustGone())
        openPanel();
}

void MenuBarExtra::openSettings()
{
    closePanel();
    if (!m_settings) {
        m_settings = std::make_unique<QQuickView>(&engine(), nullptr);
        m_settings->setIcon(appIcon());
        m_settings->setTitle(QCoreApplication::applicationName() + u' '
                             + displayText("common.settings"));
        m_settings->setResizeMode(QQuickView::SizeRootObjectToView);
        m_settings->setInitialProperties(
            {{QStringLiteral("extra"), QVariant::fromValue(this)},
             {QStringLiteral("viewModel"), QVariant::fromValue(&m_settingsViewModel)}});
        m_settings->setSource(qmlFile("SettingsScene.qml"));
        m_settings->setMinimumSize(smallestSettings);
        m_settings->resize(ordinarySettings.boundedTo(m_settings->screen()->availableSize()));
    }
    m_settingsViewModel.reload();
    m_settings->show();
    bringToFront(*m_settings);
}

void MenuBarExtra::closeSettings()
{
    if (m_settings)
        m_settings->close();
}

void MenuBarExtra::refresh()
{
    m_model.refresh();
}

void MenuBarExtra::quit()
{
    // A figure that is being entered is stored when its field loses the focus.
    QQuickItem *focused = m_settings ? m_settings->activeFocusItem() : nullptr;
    if (focused)
        focused->setFocus(false);
    QCoreApplication::quit();
}

QQuickView *MenuBarExtra::panel() const
{
    return m_panel.get();
}

void MenuBarExtra::updateToolTip()
{
    QStringList lines{QCoreApplication::applicationName()};
    for (const ProviderRow &row : m_panelViewModel.providerRows())
        lines += row.name + u' ' + row.usedText;
    m_item->setToolTip(lines.join(u'\n'));
}

QQmlEngine &MenuBarExtra::engine()
{
    if (!m_engine) {
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    }
    return *m_engine;
}

} // namespace tallyglass
