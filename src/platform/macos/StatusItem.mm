#include "model/DisplayTexts.h"
#include "platform/Desktop.h"
#include "platform/macos/NativeWindows.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <utility>
#include <vector>

/// What the item and the lines of its menu call.
@interface TGStatusItemTarget : NSObject

- (void)setClickHandler:(std::function<void()>)handler;
- (void)setReopenHandler:(std::function<void()>)handler;
- (NSMenuItem *)menuItemWithTitle:(NSString *)title handler:(std::function<void()>)handler;
- (void)click:(id)sender;
- (void)choose:(NSMenuItem *)sender;
- (void)end;

@end

@implementation TGStatusItemTarget {
    std::function<void()> _clickHandler;
    std::function<void()> _reopenHandler;
    std::vector<std::function<void()>> _menuHandlers; // the index of each is its item's tag
}

- (void)setClickHandler:(std::function<void()>)handler
{
    _clickHandler = std::move(handler);
}

/// Called when the user starts the program once more, as from the Finder: the system sends that to
/// the one that runs.
- (void)setReopenHandler:(std::function<void()>)handler
{
    _reopenHandler = std::move(handler);
    // Later than the system's own handler, which would take the place of this one.
    [NSNotificationCenter.defaultCenter addObserver:self
                                           selector:@selector(handleReopening:)
                                               name:NSApplicationDidFinishLaunchingNotification
                                             object:nil];
}

- (void)handleReopening:(NSNotification *)launched
{
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(reopen:withReply:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
}

- (void)reopen:(NSAppleEventDescriptor *)event withReply:(NSAppleEventDescriptor *)reply
{
    _reopenHandler();
}

- (void)end
{
    [NSNotificationCenter.defaultCenter removeObserver:self];
    [NSAppleEventManager.sharedAppleEventManager
        removeEventHandlerForEventClass:kCoreEventClass
                             andEventID:kAEReopenApplication];
}

- (NSMenuItem *)menuItemWithTitle:(NSString *)title handler:(std::function<void()>)handler
{
    NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:title
                                                  action:@selector(choose:)
                                           keyEquivalent:@""];
    item.target = self;
    item.tag = static_cast<NSInteger>(_menuHandlers.size());
    _menuHandlers.push_back(std::move(handler));
    return item;
}

- (void)click:(id)sender
{
    _clickHandler();
}

- (void)choose:(NSMenuItem *)sender
{
    _menuHandlers[static_cast<std::size_t>(sender.tag)]();
}

@end

namespace tallyglass {

namespace {

constexpr int pixelsPerPoint = 2; // of the drawn mask

NSImage *templateImage(const MenuBarIcon &icon)
{
    NSImage *image = [NSImage imageWithSystemSymbolName:icon.symbol.toNSString()
                               accessibilityDescription:@"Tallyglass"];
    if (!image) {
        const CGImageRef drawn = icon.mask.toCGImage();
        image = [[NSImage alloc]
            initWithCGImage:drawn
                       size:NSMakeSize(static_cast<CGFloat>(icon.mask.width()) / pixelsPerPoint,
                                       static_cast<CGFloat>(icon.mask.height()) / pixelsPerPoint)];
        CGImageRelease(drawn);
        image.accessibilityDescription = @"Tallyglass";
    }
    [image setTemplate:YES]; // the property's name is a word of C++
    return image;
}

/// Whether a click is a right one or one with Control or Option held. From macOS 27 on no right
/// clicks come, and the event at hand need not be the click, so the keys are looked at as well.
bool asksForMenu(NSEvent *event)
{
    constexpr NSEventModifierFlags menuKeys =
        NSEventModifierFlagControl | NSEventModifierFlagOption;
    return event.type == NSEventTypeRightMouseDown
        || ((event.modifierFlags | NSEvent.modifierFlags) & menuKeys) != 0;
}

/// The item in the menu bar: a click for the panel, other clicks for the menu.
class StatusItem final : public MenuBarItem
{
public:
    explicit StatusItem(const MenuBarIcon &icon);
    StatusItem(const StatusItem &) = delete;
    StatusItem &operator=(const StatusItem &) = delete;
    ~StatusItem() override;

    bool isShown() const override { return m_item.visible; }
    QRect area() const override;
    void setToolTip(const QString &text) override { m_item.button.toolTip = text.toNSString(); }

private:
    void react();

    NSStatusItem *m_item; ///< nil where nothing is drawn by the system
    NSMenu *m_menu;
    TGStatusItemTarget *m_target; ///< the item and the menu do not keep it
};

StatusItem::StatusItem(const MenuBarIcon &icon)
    : m_item(drawsNatively()
                 ? [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]
                 : nil)
    , m_menu([[NSMenu alloc] init])
    , m_target([[TGStatusItemTarget alloc] init])
{
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory]; // no Dock icon

    const auto add = [this](TextKey text, void (MenuBarItem::*signal)()) {
        [m_menu addItem:[m_target menuItemWithTitle:displayText(text).toNSString()
                                            handler:[this, signal] { Q_EMIT(this->*signal)(); }]];
    };
    add("menu.open", &MenuBarItem::openChosen);
    add("common.refresh", &MenuBarItem::refreshChosen);
    add("common.settings", &MenuBarItem::settingsChosen);
    [m_menu addItem:NSMenuItem.separatorItem];
    add("common.exit", &MenuBarItem::quitChosen);

    [m_target setClickHandler:[this] { react(); }];
    [m_target setReopenHandler:[this] { Q_EMIT openChosen(); }];
    NSStatusBarButton *button = m_item.button;
    button.image = templateImage(icon);
    button.target = m_target;
    button.action = @selector(click:);
    [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
}

StatusItem::~StatusItem()
{
    [m_target end];
    if (m_item)
        [NSStatusBar.systemStatusBar removeStatusItem:m_item];
}

QRect StatusItem::area() const
{
    NSWindow *window = m_item.button.window;
    NSScreen *first = NSScreen.screens.firstObject;
    if (!window || !first)
        return {};
    // Counted from the lower left corner of the first screen there, from the upper left one here.
    const NSRect frame = window.frame;
    return QRectF(NSMinX(frame), NSMaxY(first.frame) - NSMaxY(frame), NSWidth(frame),
                  NSHeight(frame))
        .toRect();
}

void StatusItem::react()
{
    if (!asksForMenu(NSApp.currentEvent)) {
        Q_EMIT clicked();
        return;
    }
    // An item that has a menu opens it on every click, so it has one for this click only.
    m_item.menu = m_menu;
    [m_item.button performClick:nil];
    m_item.menu = nil;
}

} // namespace

std::unique_ptr<MenuBarItem> makeMenuBarItem(const MenuBarIcon &icon)
{
    return std::make_unique<StatusItem>(icon);
}

} // namespace tallyglass
