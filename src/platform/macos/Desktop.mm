#include "platform/Desktop.h"

#include "platform/macos/NativeWindows.h"

#include <QCursor>
#include <QWindow>

#import <AppKit/AppKit.h>
#include <algorithm>

namespace tallyglass {

namespace {

NSWindow *nativeWindow(const QWindow &window)
{
    return ((__bridge NSView *)reinterpret_cast<void *>(window.winId())).window;
}

/// After a panel that was closed by a key nobody would have the keys.
void giveFrontBack()
{
    const auto isVisible = [](const QWindow *window) { return window->isVisible(); };
    if (NSApp.active && std::ranges::none_of(QGuiApplication::topLevelWindows(), isVisible))
        [NSApp hide:nil];
}

/// From the opening of a panel to its closing: hides it when the user clicks into another program.
class OutsideClicks final : public QObject
{
public:
    OutsideClicks(QWindow &panel, QRect icon)
        : QObject(&panel)
    {
        const auto hide = ^(NSEvent *) {
            // Recent systems count our own item as another program's. It will tell us itself.
            if (!icon.contains(QCursor::pos()))
                panel.hide();
        };
        constexpr auto presses = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown;
        m_monitor = [NSEvent addGlobalMonitorForEventsMatchingMask:presses handler:hide];
        connect(&panel, &QWindow::visibleChanged, this, [this](bool isVisible) {
            if (isVisible)
                return;
            deleteLater();
            // Later: another program or another window of ours may be about to come to the front.
            dispatch_async(dispatch_get_main_queue(), ^{ giveFrontBack(); });
        });
    }
    OutsideClicks(const OutsideClicks &) = delete;
    OutsideClicks &operator=(const OutsideClicks &) = delete;
    ~OutsideClicks() override { [NSEvent removeMonitor:m_monitor]; }

private:
    id m_monitor;
};

} // namespace

void prepareForWindows()
{
    // Else the toolkit takes the front from whatever the user is typing in when they log in.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
}

int dropDownRadius()
{
    return 10;
}

void becomeDropDown(QWindow &window, const QRect &icon)
{
    if (!drawsNatively())
        return;
    NSWindow *panel = nativeWindow(window);
    panel.hidesOnDeactivate = NO; // it hides itself, which the toolkit then knows of
    panel.hasShadow = YES;
    panel.level = NSPopUpMenuWindowLevel;
    panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace
        | NSWindowCollectionBehaviorTransient | NSWindowCollectionBehaviorFullScreenAuxiliary;
    new OutsideClicks(window, icon);
}

void bringToFront(QWindow &window)
{
    // Without the front a window gets no keys. The newer call only asks for it, and the system may
    // say no.
    [NSApp unhide:nil];
    [NSApp activateIgnoringOtherApps:YES];
    if (drawsNatively())
        [nativeWindow(window) orderFrontRegardless];
    window.requestActivate();
}

} // namespace tallyglass
