tagwright_test (util
    bytes_test.cpp error_text_test.cpp file_test.cpp memory_test.cpp mutex_access_test.cpp my_error_fct_test.cpp
    text_test.cpp tokenizer_test.cpp utility_directory_test.cpp utility_IGB_test.cpp win_registry_test.cpp)
