# Inputs that the fuzzer found a fault with, one folder a target (fuzz/fuzz.h), fed to the very functions that it calls.
tagwright_test (faults
    replay_test.cpp)
target_link_libraries (faults_test PRIVATE tagwright_fuzz)
