tagwright_test (tools
    boxes_test.cpp buttons_test.cpp device_test.cpp icon_test.cpp keyboard_test.cpp panels_test.cpp primitives_test.cpp
    scenes_test.cpp sliders_test.cpp texts_test.cpp widget_test.cpp)
if (NOT WIN32)
    target_sources (tools_test PRIVATE tools/golden_test.cpp)
endif ()

# Shows all widgets: gallery --picture FILE WIDTH HEIGHT.
add_executable (gallery tools/gallery.cpp)
target_link_libraries (gallery PRIVATE tagwright_options tagwright_tools tagwright_resources)
target_compile_definitions (gallery PRIVATE TAGWRIGHT_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
set_target_properties (gallery PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
