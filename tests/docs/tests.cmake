# The pages, held to the program: what their commands print, where their links lead, which options and messages they name.
if (NOT CMAKE_CROSSCOMPILING AND NOT TAGWRIGHT_SANITIZE)
    add_test (NAME docs COMMAND
        python3 -B ${CMAKE_CURRENT_SOURCE_DIR}/docs/docs_test.py $<TARGET_FILE:tagwright> ${PROJECT_BINARY_DIR})
    set_tests_properties (docs PROPERTIES TIMEOUT 600)
endif ()
