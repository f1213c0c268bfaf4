# The tray program `brenvik`: the shell around the monitor, the preferences and
# the views, its icons and desktop entry, and their install rules.

# The tray icon's drawing: QtGui only, shared by the app and the build-time
# icon export.
brenvik_app_library(brenvik_trayicon
  FILES TrayIconPainter.cpp TrayIconPainter.h
  PUBLIC brenvik_presentation brenvik_statusshape Qt6::Gui)

# Everything of the program but main(), so the tests drive the same code.
brenvik_app_library(brenvik_shell X11
  FILES AppModel.cpp AppModel.h ControlPanelController.cpp ControlPanelController.h
        ControlPanelPlacement.cpp ControlPanelPlacement.h
        PopoverPlacement.cpp PopoverPlacement.h PopoverWindow.cpp PopoverWindow.h
        SingleInstance.cpp SingleInstance.h StatusItemController.cpp StatusItemController.h
        SystemTraySurface.cpp SystemTraySurface.h TrayHostWatcher.cpp TrayHostWatcher.h
        TraySurface.h AppLogging.cpp AppLogging.h
  PUBLIC brenvik_core brenvik_views brenvik_preferences brenvik_notification_preference
         brenvik_notify brenvik_places brenvik_trayicon Qt6::Widgets Qt6::DBus)

add_executable(brenvik ${CMAKE_CURRENT_LIST_DIR}/BrenvikApp.cpp)
target_link_libraries(brenvik PRIVATE brenvik_shell brenvik_warnings PkgConfig::XCB)

# The application icon as hicolor PNGs, drawn at build time by the same painter.
add_executable(brenvik-icon-export ${CMAKE_CURRENT_LIST_DIR}/AppIconExport.cpp)
target_link_libraries(brenvik-icon-export PRIVATE brenvik_trayicon brenvik_warnings)
set(BRENVIK_ICON_DIR ${CMAKE_CURRENT_BINARY_DIR}/icons)
set(BRENVIK_ICON_SIZES 16 22 24 32 48 64 128 256)
set(BRENVIK_ICON_PNGS)
foreach(size IN LISTS BRENVIK_ICON_SIZES)
  list(APPEND BRENVIK_ICON_PNGS ${BRENVIK_ICON_DIR}/hicolor/${size}x${size}/apps/brenvik.png)
endforeach()
add_custom_command(
  OUTPUT ${BRENVIK_ICON_PNGS}
  COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0
          $<TARGET_FILE:brenvik-icon-export> ${BRENVIK_ICON_DIR}
  DEPENDS brenvik-icon-export
  COMMENT "Drawing the application icon")
add_custom_target(brenvik_icons ALL DEPENDS ${BRENVIK_ICON_PNGS})
add_dependencies(brenvik brenvik_icons)

install(TARGETS brenvik RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/data/brenvik.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/data/io.github.brenvik.Brenvik.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${PROJECT_SOURCE_DIR}/data/brenvik.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(DIRECTORY ${BRENVIK_ICON_DIR}/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
