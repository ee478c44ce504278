#pragma once

#include "model/Instant.h"

#include <QTemporaryDir>

namespace tallyglass {

/// A made-up home folder in which all three tools have been at work for a month up to now. It is
/// gone with the object.
class DemoHome
{
public:
    explicit DemoHome(Instant now);

    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

} // namespace tallyglass
