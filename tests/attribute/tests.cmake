tagwright_test (attribute
    format_test.cpp
    listing_test.cpp
    NEMA_Tag_Attribute_test.cpp
    NEMA_Tag_Complement_test.cpp
    NEMA_Tag_Copy_test.cpp
    sequence_cursor_test.cpp
    sort_test.cpp
    value_test.cpp)
