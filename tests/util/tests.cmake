tagwright_test (util
    bytes_test.cpp file_test.cpp my_error_fct_test.cpp text_test.cpp)
