#pragma once

namespace tallyglass {

/// A text that a user can see.
struct DisplayText
{
    const char *key = nullptr; ///< its name in catalogues
    const char *japanese = nullptr; ///< UTF-8, used when no catalogue has the key
};

} // namespace tallyglass
