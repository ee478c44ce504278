#pragma once

#include "platform/UserDefaults.h"

#import <Foundation/Foundation.h>

namespace tallyglass {

/// The application's user defaults, as "defaults read" shows them.
class MacUserDefaults final : public UserDefaults
{
public:
    /// Those of a made-up home folder must neither show nor change what the user has chosen.
    enum class Kept { Always, WhileRunning };

    explicit MacUserDefaults(Kept kept);

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;

private:
    NSUserDefaults *m_lasting; ///< nil when nothing is to last
    NSMutableDictionary<NSString *, id> *m_passing; ///< nil when everything is
};

} // namespace tallyglass
