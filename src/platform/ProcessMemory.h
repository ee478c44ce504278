#pragma once

namespace tallyglass {

/// From now on no other program of the user may read the memory of this process, which holds a
/// secret, and no core file is written of it, as far as the system can do that.
void keepMemoryPrivate();

} // namespace tallyglass
