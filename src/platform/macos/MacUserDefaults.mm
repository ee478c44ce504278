#include "platform/macos/MacUserDefaults.h"

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

} // namespace

MacUserDefaults::MacUserDefaults(Kept kept)
    : m_lasting(kept == Kept::Always ? NSUserDefaults.standardUserDefaults : nil)
    , m_passing(kept == Kept::Always ? nil : [NSMutableDictionary dictionary])
{
}

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

} // namespace tallyglass
