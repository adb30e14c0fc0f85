# tagwright_test (app NAME_test.cpp ...)
