# tagwright_test (attribute NAME_test.cpp ...)
