set (app_tests
    command_line_test.cpp configuration_test.cpp main_window_test.cpp start_up_test.cpp tables_directory_test.cpp
    trace_key_test.cpp ../support/program.cpp)
if (NOT WIN32)
    list (APPEND app_tests install_test.cpp memory_failures_test.cpp whole_window.cpp window_pictures_test.cpp)
endif ()
tagwright_test (app ${app_tests})
add_dependencies (app_test tagwright)

# The program on a screen of the test's own, used by drops, mouse and keys; large enough for a window
# that is larger than its content.
if (NOT WIN32)
    add_test (NAME main_window COMMAND
        xvfb-run -a -s "-screen 0 2100x1150x24 -nolisten tcp" ${CMAKE_CURRENT_SOURCE_DIR}/scripts/main-window-test.sh
        $<TARGET_FILE:tagwright> $<TARGET_FILE:x11_client> ${PROJECT_BINARY_DIR}/pictures)
    set_tests_properties (main_window PROPERTIES LABELS display TIMEOUT 300)
    if (TAGWRIGHT_SANITIZE)
        set_tests_properties (main_window PROPERTIES ENVIRONMENT "LSAN_OPTIONS=${leak_options}")
    endif ()
endif ()
