# tagwright_test (nema NAME_test.cpp ...)
