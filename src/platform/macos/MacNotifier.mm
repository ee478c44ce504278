#include "model/DisplayTexts.h"
#include "platform/macos/MacPorts.h"

#include <QPointer>

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

/// Has notifications shown also while a window of ours is at the front, and tells of clicks on
/// them.
@interface TGNotificationPresenter : NSObject <UNUserNotificationCenterDelegate>

- (instancetype)initWithNotifier:(tallyglass::Notifier *)notifier;

@end

@implementation TGNotificationPresenter {
    QPointer<tallyglass::Notifier> _notifier; // looked at on the main thread only
}

- (instancetype)initWithNotifier:(tallyglass::Notifier *)notifier
{
    self = [super init];
    if (self)
        _notifier = notifier;
    return self;
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
                      | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    dispatch_async(dispatch_get_main_queue(), ^{
        if (self->_notifier)
            Q_EMIT self->_notifier->clicked();
        completionHandler();
    });
}

@end

namespace tallyglass {

namespace {

class MacNotifier final : public Notifier
{
public:
    MacNotifier();

    void requestPermission() override;
    std::optional<QString> refusal() const override { return m_refusal; }
    void post(const Notification &notification) override;

private:
    void takeRefusal(NSString *reason);

    TGNotificationPresenter *m_presenter =
        nil; ///< nil without a bundle; the centre does not keep it
    std::optional<QString> m_refusal;
};

MacNotifier::MacNotifier()
{
    // Asking for the centre without a bundle ends the program.
    if (!NSBundle.mainBundle.bundleIdentifier)
        return;
    m_presenter = [[TGNotificationPresenter alloc] initWithNotifier:this];
    UNUserNotificationCenter.currentNotificationCenter.delegate = m_presenter;
}

void MacNotifier::requestPermission()
{
    if (!m_presenter)
        return;
    const QPointer<MacNotifier> self(this);
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:^(BOOL isGranted, NSError *error) {
                          // On a thread of the system's. Programs that are not signed by a known
                          // developer get an error; a user who has said no is none.
                          dispatch_async(dispatch_get_main_queue(), ^{
                              if (!self)
                                  return;
                              NSString *no = displayText("alerts.needsApproval").toNSString();
                              NSString *reason = error ? error.localizedDescription : no;
                              self->takeRefusal(isGranted ? nil : reason);
                          });
                      }];
}

void MacNotifier::post(const Notification &notification)
{
    if (!m_presenter)
        return;
    UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
    content.title = notification.title.toNSString();
    content.body = notification.body.toNSString();
    content.sound = UNNotificationSound.defaultSound;
    UNNotificationRequest *request =
        [UNNotificationRequest requestWithIdentifier:notification.identifier.toNSString()
                                             content:content
                                             trigger:nil]; // at once
    const QPointer<MacNotifier> self(this);
    [UNUserNotificationCenter.currentNotificationCenter
        addNotificationRequest:request
         withCompletionHandler:^(NSError *error) {
             dispatch_async(dispatch_get_main_queue(), ^{
                 if (self)
                     self->takeRefusal(error.localizedDescription);
             });
         }];
}

/// \a reason is nil when there is no refusal.
void MacNotifier::takeRefusal(NSString *reason)
{
    m_refusal = reason ? std::optional{QString::fromNSString(reason)} : std::nullopt;
    Q_EMIT refusalChanged();
}

} // namespace

std::unique_ptr<Notifier> makeMacNotifier()
{
    return std::make_unique<MacNotifier>();
}

} // namespace tallyglass
