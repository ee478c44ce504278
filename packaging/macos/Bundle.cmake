# Tallyglass.app, as it is built and as "cmake --install" puts it into a folder: with Qt, with Sparkle
# where that was found, and not signed yet.
#   Contents/MacOS/Tallyglass    the application
#   Contents/Helpers/tallyglass  the command line; beside the other its name would be the same
set(icon ${CMAKE_CURRENT_LIST_DIR}/Tallyglass.icns)
set(bridge ${PROJECT_SOURCE_DIR}/bridge/tallyglass-statusline-bridge.py)
target_sources(tallyglass-app PRIVATE ${icon} ${bridge})
set_source_files_properties(${icon} ${bridge} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(tallyglass-app PROPERTIES
    OUTPUT_NAME Tallyglass
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_LIST_DIR}/Info.plist.in
    INSTALL_RPATH @executable_path/../Frameworks
    LINKER_LANGUAGE CXX) # not Swift's, of which there is one function
set_target_properties(tallyglass PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/Tallyglass.app/Contents/Helpers
    INSTALL_RPATH @executable_path/../Frameworks)

install(TARGETS tallyglass-app BUNDLE DESTINATION .)
install(TARGETS tallyglass RUNTIME DESTINATION Tallyglass.app/Contents/Helpers)

# Not Qt's own install script: it looks for QML imports in the folder of the application's target,
# and ours are in a library.
find_program(MACDEPLOYQT macdeployqt HINTS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS})
install(CODE "
    execute_process(
        COMMAND \"${MACDEPLOYQT}\" Tallyglass.app -always-overwrite
            -executable=Tallyglass.app/Contents/Helpers/tallyglass
            \"-qmldir=${PROJECT_SOURCE_DIR}/src/ui/qml\"
        WORKING_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\"
        COMMAND_ERROR_IS_FATAL ANY)")

# Whole, and with its links: it has programs of its own inside.
if(TALLYGLASS_SPARKLE)
    install(DIRECTORY ${TALLYGLASS_SPARKLE} DESTINATION Tallyglass.app/Contents/Frameworks
        USE_SOURCE_PERMISSIONS)
endif()
