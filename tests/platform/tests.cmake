# tagwright_test (platform NAME_test.cpp ...)
