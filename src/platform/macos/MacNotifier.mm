#include "platform/macos/MacNotifier.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

/// Has notifications shown also while a window of ours is at the front.
@interface TGNotificationPresenter : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation TGNotificationPresenter

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler
{
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
                      | UNNotificationPresentationOptionSound);
}

@end

namespace tallyglass {

MacNotifier::MacNotifier()
    : m_presenter(nil)
{
    // Asking for the centre without a bundle ends the program.
    if (!NSBundle.mainBundle.bundleIdentifier)
        return;
    m_presenter = [[TGNotificationPresenter alloc] init];
    UNUserNotificationCenter.currentNotificationCenter.delegate = m_presenter;
}

void MacNotifier::requestPermission()
{
    if (!m_presenter)
        return;
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:^(BOOL, NSError *){
                          // Refused: what is posted is dropped by the system.
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
    [UNUserNotificationCenter.currentNotificationCenter addNotificationRequest:request
                                                         withCompletionHandler:nil];
}

} // namespace tallyglass
