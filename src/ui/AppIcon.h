#pragma once

#include "platform/Desktop.h"

namespace tallyglass {

/// The program's mark, for the tray and for its windows: sharp at every size that trays have.
QIcon appIcon();

/// The same in all forms.
MenuBarIcon menuBarIcon();

} // namespace tallyglass
