tagwright_test (util my_error_fct_test.cpp)
