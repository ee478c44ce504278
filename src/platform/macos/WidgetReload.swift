import WidgetKit

/// Makes the system's widgets read their data again. Called from MacWidgetCentre.mm.
@_cdecl("tallyglassReloadAllTimelines")
public func reloadAllTimelines() {
    WidgetCenter.shared.reloadAllTimelines()
}
