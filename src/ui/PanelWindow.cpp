#include "ui/PanelWindow.h"

#include "platform/Desktop.h"
#include "ui/AppIcon.h"
#include "ui/PanelPlacement.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QScreen>

namespace tallyglass {

namespace {

// From the press of a button, which takes the focus away, to the icon's word that it was clicked.
constexpr qint64 longestClick = 150; // milliseconds

constexpr int roomOfFrame = 24; // pixels, for a title bar

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
    if (dropDownRadius() > 0)
        setColor(Qt::transparent); // of what is cut off at the corners
    setIcon(appIcon());
    setTitle(QCoreApplication::applicationName());
    setInitialProperties(properties);
    setSource(content);
    connect(this, &QWindow::activeChanged, this, &PanelWindow::goWhenInactive);
}

void PanelWindow::openAt(const QRect &icon)
{
    m_icon = icon;
    m_dropsDown = true;
    open(dropDown, panelGap);
}

void PanelWindow::openAsWindow()
{
    m_icon = {};
    m_dropsDown = false;
    open(Qt::Window, roomOfFrame);
}

/// \a margin is what has to stay free above and below, in pixels.
void PanelWindow::open(Qt::WindowFlags flags, int margin)
{
    if (flags != this->flags()) {
        destroy(); // Window managers look at some of it once, when a window is new.
        setFlags(flags);
    }
    m_available = availableAround(m_icon);
    fitContent(m_available.height() - 2 * margin);
    if (m_dropsDown) {
        becomeDropDown(*this, m_icon);
        setPosition(panelPlace(size(), m_icon, m_available));
    }
    show();
    bringToFront(*this);
}

/// The panel takes the height of its content, an ordinary window lets the user choose.
void PanelWindow::fitContent(int largestHeight)
{
    QQuickItem *root = rootObject();
    if (!root)
        return;
    root->resetWidth();
    root->resetHeight();
    root->setProperty("largestHeight", largestHeight);
    root->setProperty("radius", m_dropsDown ? dropDownRadius() : 0);
    const QSize wanted = root->size().toSize();
    setResizeMode(m_dropsDown ? SizeViewToRootObject : SizeRootObjectToView);
    // The view would follow in a moment, while the window manager already places it.
    resize(wanted);
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
