set (app_tests
    command_line_test.cpp configuration_test.cpp main_window_test.cpp start_up_test.cpp tables_directory_test.cpp
    trace_key_test.cpp ../support/program.cpp)
if (NOT WIN32)
    list (APPEND app_tests install_test.cpp)
endif ()
tagwright_test (app ${app_tests})
add_dependencies (app_test tagwright)
