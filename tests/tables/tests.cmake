tagwright_test (tables data_dictionary_test.cpp definition_assembly_test.cpp definition_files_test.cpp
                definition_private_test.cpp dictionary_lines_test.cpp list_cache_test.cpp
                modality_test.cpp private_names_test.cpp shipped_tables_test.cpp uid_names_test.cpp)
add_dependencies (tables_test tagwright_tables)     # They stand where the program looks for them, and a test looks there, too.
