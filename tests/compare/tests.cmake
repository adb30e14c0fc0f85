tagwright_test (compare
    attribute_comparison_test.cpp
    cleanup_listing_test.cpp
    comparison_run_test.cpp
    difference_list_test.cpp
    examples_test.cpp
    file_reader_test.cpp
    memory_failures_test.cpp
    modality_run_test.cpp)
