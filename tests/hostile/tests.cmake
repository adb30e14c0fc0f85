# Files that nobody should have written, fed to everything that reads files.
tagwright_test (hostile
    expected.cpp feed.cpp many.cpp
    lengths_test.cpp size_test.cpp structure_test.cpp values_test.cpp)
