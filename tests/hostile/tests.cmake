# Files that nobody should have written, fed to everything that reads files.
set (hostile_tests
    creators.cpp expected.cpp feed.cpp kinds.cpp many.cpp
    creators_test.cpp lengths_test.cpp size_test.cpp sources_test.cpp sparse_test.cpp structure_test.cpp values_test.cpp
    window_test.cpp ../app/whole_window.cpp ../platform/$<IF:$<BOOL:${WIN32}>,win32,posix>_process_time.cpp)
if (NOT WIN32)
    list (APPEND hostile_tests posix_sources_test.cpp ../platform/posix_process.cpp ../support/program.cpp)
endif ()
if (NOT WIN32 AND NOT TAGWRIGHT_SANITIZE) # Whose memory is another one.
    list (APPEND hostile_tests posix_creators_test.cpp posix_memory_test.cpp)
endif ()
tagwright_test (hostile ${hostile_tests})
add_dependencies (hostile_test tagwright)
