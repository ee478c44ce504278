#pragma once

namespace tallyglass {

/// The system's home-screen widgets.
class WidgetCentre
{
public:
    virtual ~WidgetCentre();

    /// Makes the widgets read the snapshot file again.
    virtual void reloadAllTimelines() = 0;
};

} // namespace tallyglass
