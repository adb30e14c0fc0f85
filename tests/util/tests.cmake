set (util_tests
    bytes_test.cpp error_text_test.cpp file_test.cpp memory_test.cpp mutex_access_test.cpp my_error_fct_test.cpp
    text_test.cpp tokenizer_test.cpp utility_directory_test.cpp utility_IGB_test.cpp win_registry_test.cpp)
if (NOT TAGWRIGHT_SANITIZE) # Whose memory is another one.
    list (APPEND util_tests memory_slabs_test.cpp)
endif ()
tagwright_test (util ${util_tests})
