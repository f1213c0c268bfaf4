# The tray program's shell: icon drawing, status item, popover placement,
# control panel window and the start-up order, headless.
brenvik_add_gtest(brenvik_shell_tests
  SOURCES
    ${PROJECT_SOURCE_DIR}/tests/support/QtTestMain.cpp
    ${CMAKE_CURRENT_LIST_DIR}/AppModelTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ControlPanelControllerTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PopoverPlacementTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StatusItemTest.cpp
  LIBS brenvik_shell Qt6::Test)
target_include_directories(brenvik_shell_tests PRIVATE ${PROJECT_SOURCE_DIR})
# On a 1280 × 900 laptop screen rather than offscreen's 800 × 600, where the
# panel has room to show everything at the fonts the tests set.
set_property(TEST brenvik_shell_tests APPEND PROPERTY ENVIRONMENT
  "QT_QPA_PLATFORM=offscreen:configfile=${CMAKE_CURRENT_LIST_DIR}/offscreen-laptop-screen.json")
# The panel at scale 2 on a screen of 1000 device (500 logical) pixels
# height: it must stay on the screen and scroll, not cut.
brenvik_add_test(NAME brenvik_control_panel_scale2
  COMMAND env QT_SCALE_FACTOR=2
          QT_QPA_PLATFORM=offscreen:configfile=${CMAKE_CURRENT_LIST_DIR}/offscreen-small-screen.json
          $<TARGET_FILE:brenvik_shell_tests>
          --gtest_filter=ControlPanelController.ShowsItsWholeContentWithinTheScreen)

# End to end under Xvfb on a private session bus: trayer as XEmbed tray host,
# openbox as window manager.
brenvik_add_test(NAME brenvik_tray_e2e
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/tray-e2e.sh $<TARGET_FILE:brenvik>
  SERIAL PRIVATE_SESSION LABELS e2e TIMEOUT 300)
# End to end with a real StatusNotifierItem host: Xfce's panel, started after the app.
brenvik_add_test(NAME brenvik_sni_panel_e2e
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/sni-panel-e2e.sh $<TARGET_FILE:brenvik>
  SERIAL PRIVATE_SESSION LABELS e2e TIMEOUT 120)

# On Wayland, under weston's headless compositor on a private session bus,
# with a fake StatusNotifierItem watcher.
add_executable(brenvik-fake-sni-watcher ${CMAKE_CURRENT_LIST_DIR}/FakeStatusNotifierWatcher.cpp)
target_link_libraries(brenvik-fake-sni-watcher PRIVATE Qt6::Core Qt6::DBus brenvik_warnings)
brenvik_add_test(NAME brenvik_wayland_e2e
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/wayland-e2e.sh $<TARGET_FILE:brenvik>
          $<TARGET_FILE:brenvik-fake-sni-watcher>
  SERIAL PRIVATE_SESSION LABELS e2e TIMEOUT 120)

