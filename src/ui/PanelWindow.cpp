#include "ui/PanelWindow.h"

#include "ui/AppIcon.h"
#include "ui/DesktopWindow.h"
#include "ui/PanelPlacement.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QScreen>

namespace tallyglass {

namespace {

// From the press of a button, which takes the focus away, to the icon's word that it was clicked.
constexpr qint64 longestClick = 150; // milliseconds

constexpr Qt::WindowFlags dropDown =
    Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;

QRect availableAround(const QRect &icon)
{
    const QScreen *screen = icon.isEmpty() ? nullptr : QGuiApplication::screenAt(icon.center());
    return (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

} // namespace

PanelWindow::PanelWindow(QQmlEngine &engine, const QUrl &content, const QVariantMap &properties)
    : QQuickView(&engine, nullptr)
{
    setIcon(appIcon());
    setTitle(QCoreApplication::applicationName());
    setResizeMode(SizeViewToRootObject);
    setInitialProperties(properties);
    setSource(content);
    connect(this, &QWindow::activeChanged, this, &PanelWindow::goWhenInactive);
}

void PanelWindow::openAt(const QRect &icon)
{
    m_icon = icon;
    m_dropsDown = true;
    open(dropDown);
}

void PanelWindow::openAsWindow()
{
    m_icon = {};
    m_dropsDown = false;
    open(Qt::Window);
}

void PanelWindow::open(Qt::WindowFlags flags)
{
    m_available = availableAround(m_icon);
    if (flags != this->flags() && !isVisible())
        setFlags(flags);
    if (QQuickItem *root = rootObject())
        root->setProperty("largestHeight", m_available.height() - 2 * panelGap);
    if (m_dropsDown) {
        keepOutOfTaskBar(*this);
        setPosition(panelPlace(size(), m_icon, m_available));
    }
    show();
    raise();
    requestActivate();
}

void PanelWindow::goWhenInactive()
{
    if (!m_dropsDown || isActive() || !isVisible())
        return;
    hide();
    m_sinceGone.start();
}

bool PanelWindow::hasJustGone() const
{
    return m_sinceGone.isValid() && m_sinceGone.elapsed() < longestClick;
}

void PanelWindow::resizeEvent(QResizeEvent *event)
{
    QQuickView::resizeEvent(event);
    if (m_dropsDown)
        setPosition(panelPlace(size(), m_icon, m_available));
}

} // namespace tallyglass
