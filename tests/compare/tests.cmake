tagwright_test (compare attribute_comparison_test.cpp file_reader_test.cpp)
