# tagwright_test (platform NAME_test.cpp ...)

if (WIN32)
    tagwright_test (platform win32_child.cpp win32_registry_test.cpp win32_system_test.cpp win32_window_test.cpp)
endif ()
