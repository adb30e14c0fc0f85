tagwright_test (syntax
    cleanup_test.cpp
    syntax_check_test.cpp)
