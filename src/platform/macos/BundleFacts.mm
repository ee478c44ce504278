#include "platform/macos/BundleFacts.h"

#import <Foundation/Foundation.h>

namespace tallyglass {

namespace {

QString text(NSString *key)
{
    const id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    return [value isKindOfClass:NSString.class] ? QString::fromNSString(value) : QString();
}

} // namespace

void readBundleFacts(Host &host)
{
    host.bundleIdentifier = QString::fromNSString(NSBundle.mainBundle.bundleIdentifier);
    host.shortVersion = text(@"CFBundleShortVersionString");
    host.buildVersion = text(@"CFBundleVersion");
    host.feedUrl = text(@"SUFeedURL");
    host.publicKey = text(@"SUPublicEDKey");
}

} // namespace tallyglass
