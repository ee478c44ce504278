#include "platform/macos/MacPorts.h"

#include <QDir>

#import <Foundation/Foundation.h>

namespace tallyglass {

namespace {

QVariant fromObject(id object)
{
    if ([object isKindOfClass:NSString.class])
        return QString::fromNSString(object);
    if (![object isKindOfClass:NSNumber.class])
        return {};
    const bool isBoolean = CFGetTypeID((__bridge CFTypeRef)object) == CFBooleanGetTypeID();
    return isBoolean ? QVariant(static_cast<bool>([object boolValue]))
                     : QVariant([object doubleValue]);
}

id toObject(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return @(value.toBool());
    case QMetaType::Double:
        return @(value.toDouble());
    default:
        return value.toString().toNSString();
    }
}

class MacUserDefaults final : public UserDefaults
{
public:
    explicit MacUserDefaults(bool lasts)
        : m_lasting(lasts ? NSUserDefaults.standardUserDefaults : nil)
        , m_passing(lasts ? nil : [NSMutableDictionary dictionary])
    {
    }

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;

private:
    NSUserDefaults *m_lasting; ///< nil when nothing is to last
    NSMutableDictionary<NSString *, id> *m_passing; ///< nil when everything is
};

QVariant MacUserDefaults::value(const QString &key) const
{
    NSString *name = key.toNSString();
    return fromObject(m_lasting ? [m_lasting objectForKey:name] : m_passing[name]);
}

void MacUserDefaults::setValue(const QString &key, const QVariant &value)
{
    NSString *name = key.toNSString();
    [m_lasting setObject:toObject(value) forKey:name];
    m_passing[name] = toObject(value);
}

} // namespace

std::unique_ptr<UserDefaults> makeMacUserDefaults(const QString &homeFolder)
{
    return std::make_unique<MacUserDefaults>(homeFolder == QDir::homePath());
}

} // namespace tallyglass
