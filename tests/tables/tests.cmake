tagwright_test (tables data_dictionary_test.cpp dictionary_lines_test.cpp uid_names_test.cpp)
