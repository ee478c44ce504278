#include "platform/macos/OutsideClicks.h"

#include <QWindow>

#import <AppKit/AppKit.h>
#include <utility>

namespace tallyglass {

void OutsideClicks::closeOn(QWindow &window)
{
    if (!window.findChild<OutsideClicks *>(QString(), Qt::FindDirectChildrenOnly))
        new OutsideClicks(window);
}

OutsideClicks::OutsideClicks(QWindow &window)
    : QObject(&window)
    , m_window(window)
{
    connect(&window, &QWindow::visibleChanged, this, &OutsideClicks::watch);
    watch(window.isVisible());
}

OutsideClicks::~OutsideClicks()
{
    watch(false);
}

void OutsideClicks::watch(bool isVisible)
{
    if (isVisible == (m_monitor != nullptr))
        return;
    if (!isVisible) {
        [NSEvent removeMonitor:(__bridge_transfer id)std::exchange(m_monitor, nullptr)];
        return;
    }
    const id monitor = [NSEvent
        addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                      handler:^(NSEvent *) { m_window.hide(); }];
    m_monitor = (__bridge_retained void *)monitor;
}

} // namespace tallyglass
