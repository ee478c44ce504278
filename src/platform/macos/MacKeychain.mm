#include "platform/macos/MacKeychain.h"

#import <Foundation/Foundation.h>
#import <Security/Security.h>

namespace tallyglass {

namespace {

bool isRefusal(OSStatus status)
{
    return status == errSecUserCanceled || status == errSecAuthFailed
        || status == errSecInteractionNotAllowed;
}

} // namespace

std::optional<QByteArray> MacKeychain::genericPassword(const QString &service) const
{
    const std::lock_guard lock(m_mutex);
    if (m_isRefused)
        return std::nullopt;

    NSDictionary *question = @{
        (__bridge id)kSecClass : (__bridge id)kSecClassGenericPassword,
        (__bridge id)kSecAttrService : service.toNSString(),
        (__bridge id)kSecMatchLimit : (__bridge id)kSecMatchLimitOne,
        (__bridge id)kSecReturnData : @YES,
    };
    CFTypeRef answer = nullptr;
    const OSStatus status = SecItemCopyMatching((__bridge CFDictionaryRef)question, &answer);
    const id data = CFBridgingRelease(answer);
    m_isRefused = isRefusal(status);
    if (status != errSecSuccess || ![data isKindOfClass:NSData.class])
        return std::nullopt;
    return QByteArray::fromNSData(data);
}

} // namespace tallyglass
