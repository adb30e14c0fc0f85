tagwright_test (nema
    opened_source.cpp NEMA_Read_Data_test.cpp NEMA_Read_TAG_test.cpp NEMA_Read_TAG_random_test.cpp
    NEMA_Read_Value_test.cpp)
