#pragma once

#include <QObject>

class QWindow;

namespace tallyglass {

/// Hides a window when the user clicks into another program, of which a program that is not at the
/// front learns nothing else.
class OutsideClicks final : public QObject
{
    Q_OBJECT

public:
    /// From now on, as long as there is the window. Once is enough.
    static void closeOn(QWindow &window);
    ~OutsideClicks() override;

private:
    explicit OutsideClicks(QWindow &window);
    void watch(bool isVisible);

    QWindow &m_window; ///< also the parent
    void *m_monitor = nullptr; ///< the system's, owned; null while the window is hidden
};

} // namespace tallyglass
