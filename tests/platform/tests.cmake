# tagwright_test (platform NAME_test.cpp ...)

if (WIN32)
    tagwright_test (platform
        drawing_test.cpp win32_child.cpp win32_drawing_test.cpp win32_drop.cpp win32_log_test.cpp win32_program.cpp win32_program_test.cpp
        win32_registry_test.cpp win32_scenes_test.cpp win32_system_test.cpp win32_window_test.cpp ../support/program.cpp)
    target_link_libraries (platform_test PRIVATE gdiplus) # Decodes golden pictures.
    add_dependencies (platform_test tagwright)
else ()
    tagwright_test (platform
        drawing_test.cpp plain_user.cpp posix_log_fire_test.cpp posix_log_test.cpp posix_picture_test.cpp
        posix_process.cpp posix_system_test.cpp posix_window_test.cpp
        sdl_drawing_test.cpp sdl_window_test.cpp ../support/program.cpp)
    add_executable (platform_child platform/posix_child.cpp)
    target_link_libraries (platform_child PRIVATE tagwright_options tagwright_platform)
    target_compile_definitions (platform_test PRIVATE PLATFORM_CHILD="$<TARGET_FILE:platform_child>")
    add_dependencies (platform_test platform_child)

    # Stands where the module is found.
    add_executable (sdl_child platform/sdl_child.cpp)
    target_link_libraries (sdl_child PRIVATE tagwright_options tagwright_platform)
    set_target_properties (sdl_child PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    target_compile_definitions (platform_test PRIVATE
        SDL_CHILD="$<TARGET_FILE:sdl_child>" SDL_MODULE="$<TARGET_FILE:tagwright_display>")
    add_dependencies (platform_test sdl_child tagwright)

    # Windows on a screen, which is one of the test's own.
    pkg_check_modules (X11 REQUIRED IMPORTED_TARGET x11)
    add_executable (x11_client platform/x11_client.cpp)
    target_link_libraries (x11_client PRIVATE tagwright_options PkgConfig::X11)
    set_target_properties (x11_client PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    add_test (NAME display COMMAND
        xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" ${CMAKE_CURRENT_SOURCE_DIR}/scripts/display-test.sh
        ${PROJECT_BINARY_DIR}/tests)
    set_tests_properties (display PROPERTIES LABELS display TIMEOUT 300)
    if (TAGWRIGHT_SANITIZE)
        set_tests_properties (display PROPERTIES ENVIRONMENT "LSAN_OPTIONS=${leak_options}")
    endif ()
endif ()
