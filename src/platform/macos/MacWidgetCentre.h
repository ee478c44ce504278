#pragma once

#include "platform/WidgetCentre.h"

namespace tallyglass {

class MacWidgetCentre final : public WidgetCentre
{
public:
    /// Nothing in a build without Swift, or where the program runs without a bundle.
    void reloadAllTimelines() override;
};

} // namespace tallyglass
