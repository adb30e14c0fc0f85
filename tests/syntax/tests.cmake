tagwright_test (syntax
    cleanup_test.cpp
    glance_test.cpp
    right_values_test.cpp
    syntax_check_test.cpp)
