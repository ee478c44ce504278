#pragma once

class QWindow;

namespace tallyglass {

/// Keeps a window that is not shown yet out of the desktop's task bars and switchers.
void keepOutOfTaskBar(const QWindow &window);

} // namespace tallyglass
