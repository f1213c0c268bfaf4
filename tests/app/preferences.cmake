# The preference controllers: autostart entry, login status, taskbar visibility.
brenvik_add_gtest(brenvik_preferences_tests
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/AppVisibilityControllerTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/AutostartEntryTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/LaunchAtLoginControllerTest.cpp
  LIBS brenvik_core brenvik_preferences Qt6::Test)
target_include_directories(brenvik_preferences_tests PRIVATE ${PROJECT_SOURCE_DIR})
