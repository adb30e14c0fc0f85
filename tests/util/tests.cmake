# tagwright_test (util NAME_test.cpp ...)
