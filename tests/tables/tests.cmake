# tagwright_test (tables NAME_test.cpp ...)
