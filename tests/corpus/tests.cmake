# Real files, compared with what another reader says of them. Linux only: the files and the peer are Debian packages.
if (NOT WIN32)
    add_executable (dump_elements corpus/dump_elements.cpp)
    target_link_libraries (dump_elements PRIVATE tagwright_options tagwright_compare)
    add_test (NAME corpus COMMAND /usr/bin/python3 ${CMAKE_CURRENT_SOURCE_DIR}/corpus/corpus_test.py
              $<TARGET_FILE:dump_elements>)
    set_tests_properties (corpus PROPERTIES TIMEOUT 300 LABELS slow)

    add_executable (dump_listing corpus/dump_listing.cpp)
    target_link_libraries (dump_listing PRIVATE tagwright_options tagwright_compare)
    add_test (NAME listing COMMAND /usr/bin/python3 ${CMAKE_CURRENT_SOURCE_DIR}/corpus/listing_test.py
              $<TARGET_FILE:dump_listing>)

    add_executable (dump_modality corpus/dump_modality.cpp)
    target_link_libraries (dump_modality PRIVATE tagwright_options tagwright_compare)
    add_test (NAME modality COMMAND /usr/bin/python3 -B ${CMAKE_CURRENT_SOURCE_DIR}/corpus/modality_test.py
              $<TARGET_FILE:dump_modality> "${PROJECT_SOURCE_DIR}/DICOM Tables")
    set_tests_properties (modality PROPERTIES TIMEOUT 300 LABELS slow)
endif ()
