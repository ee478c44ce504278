#include "platform/Desktop.h"

#include "platform/macos/NativeWindows.h"
#include "platform/macos/OutsideClicks.h"
#include "platform/macos/StatusItem.h"

#include <QWindow>

#import <AppKit/AppKit.h>

namespace tallyglass {

bool hasDisplay()
{
    return true;
}

std::unique_ptr<MenuBarItem> makeMenuBarItem(const MenuBarIcon &icon)
{
    return std::make_unique<StatusItem>(icon);
}

int dropDownRadius()
{
    return 10;
}

void becomeDropDown(QWindow &window)
{
    if (!drawsNatively())
        return;
    NSView *view = (__bridge NSView *)reinterpret_cast<void *>(window.winId());
    NSWindow *panel = view.window;
    if ([panel isKindOfClass:NSPanel.class])
        panel.styleMask |= NSWindowStyleMaskNonactivatingPanel; // takes keys, not the front
    panel.hidesOnDeactivate = NO; // we are hardly ever active
    panel.hasShadow = YES;
    panel.level = NSPopUpMenuWindowLevel;
    panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace
        | NSWindowCollectionBehaviorTransient | NSWindowCollectionBehaviorFullScreenAuxiliary;
    OutsideClicks::closeOn(window);
}

void activateApplication()
{
    if (@available(macOS 14, *))
        [NSApp activate];
    else
        [NSApp activateIgnoringOtherApps:YES];
}

} // namespace tallyglass
