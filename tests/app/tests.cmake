set (app_tests command_line_test.cpp configuration_test.cpp start_up_test.cpp ../support/program.cpp)
if (NOT WIN32)
    list (APPEND app_tests install_test.cpp)
endif ()
tagwright_test (app ${app_tests})
add_dependencies (app_test tagwright)

# The program makes a directory of its own below this one; the user's real one is left alone.
if (NOT WIN32)
    set_tests_properties (app PROPERTIES ENVIRONMENT "APPDATA=${PROJECT_BINARY_DIR}/tests/user")
endif ()
