tagwright_test (view result_view_test.cpp)
