tagwright_test (tools
    boxes_test.cpp buttons_test.cpp device_test.cpp icon_test.cpp keyboard_test.cpp primitives_test.cpp sliders_test.cpp
    texts_test.cpp widget_test.cpp)
