#include "platform/macos/MacWidgetCentre.h"

#import <Foundation/Foundation.h>

#ifdef TALLYGLASS_HAS_WIDGETS
extern "C" void tallyglassReloadAllTimelines(void); // WidgetReload.swift
#endif

namespace tallyglass {

void MacWidgetCentre::reloadAllTimelines()
{
#ifdef TALLYGLASS_HAS_WIDGETS
    if (NSBundle.mainBundle.bundleIdentifier)
        tallyglassReloadAllTimelines();
#endif
}

} // namespace tallyglass
