# The two preference controllers: the login item (an XDG autostart entry) and
# Dock visibility (taskbar hints on X11). QtGui for the windows they touch,
# no widgets.
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)

add_library(brenvik_preferences STATIC
  ${CMAKE_CURRENT_LIST_DIR}/ActivationPolicy.cpp
  ${CMAKE_CURRENT_LIST_DIR}/AppVisibilityController.cpp
  ${CMAKE_CURRENT_LIST_DIR}/AutostartEntry.cpp
  ${CMAKE_CURRENT_LIST_DIR}/LaunchAtLoginController.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ActivationPolicy.h
  ${CMAKE_CURRENT_LIST_DIR}/AppVisibilityController.h
  ${CMAKE_CURRENT_LIST_DIR}/LaunchAtLoginController.h)
target_include_directories(brenvik_preferences PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(brenvik_preferences
  PUBLIC Qt6::Core Qt6::Gui
  PRIVATE PkgConfig::XCB brenvik_warnings)
