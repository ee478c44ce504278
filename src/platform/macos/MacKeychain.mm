#include "platform/macos/MacPorts.h"

#import <Foundation/Foundation.h>
#import <Security/Security.h>
#include <mutex>

namespace tallyglass {

namespace {

class MacKeychain final : public Keychain
{
public:
    std::optional<QByteArray> genericPassword(const QString &service) const override;

private:
    mutable std::mutex m_mutex; ///< one question at a time
    mutable bool m_isRefused = false;
};

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
    // Only the user's own no. A keychain that is locked, or that cannot ask just now, will open.
    m_isRefused = status == errSecUserCanceled;
    if (status != errSecSuccess || ![data isKindOfClass:NSData.class])
        return std::nullopt;
    return QByteArray::fromNSData(data);
}

} // namespace

std::unique_ptr<Keychain> makeMacKeychain()
{
    return std::make_unique<MacKeychain>();
}

} // namespace tallyglass
