# tagwright_test (compare NAME_test.cpp ...)
