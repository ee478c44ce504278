#pragma once

#include <QIcon>

namespace tallyglass {

/// The program's mark, for the tray and for its windows: sharp at every size that trays have.
QIcon appIcon();

} // namespace tallyglass
