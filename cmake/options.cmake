# Flags of our own sources, and the one function that declares a library of ours.

add_library (tagwright_options INTERFACE)
target_include_directories (tagwright_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options (tagwright_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wcast-qual -Wformat=2 -Wno-format-nonliteral
    -Wundef)
if (NOT TAGWRIGHT_COVERAGE)
    target_compile_options (tagwright_options INTERFACE -Werror)   # Counting is no time to learn of clang's warnings.
endif ()
target_compile_definitions (tagwright_options INTERFACE
    $<$<PLATFORM_ID:Windows>:__USE_MINGW_ANSI_STDIO=1>)

# The program itself throws nothing and asks for no type at run time; the tests may.
add_library (tagwright_program_options INTERFACE)
target_link_libraries (tagwright_program_options INTERFACE tagwright_options)
target_compile_options (tagwright_program_options INTERFACE -fno-exceptions -fno-rtti)

# Records are cleared by the million, each of some hundred bytes, for which the string instruction that GCC would take is
# slower than plain stores.
if (CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    target_compile_options (tagwright_program_options INTERFACE
        -mmemset-strategy=vector_loop:256:noalign,libcall:-1:noalign)
endif ()

if (TAGWRIGHT_SANITIZE)
    add_compile_options (-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options (-fsanitize=address,undefined)
endif ()

# What users run is optimised as a whole, across its sources, which takes a tenth off its time. Tests would wait long for
# each of their programs to be linked.
if (TAGWRIGHT_WHOLE AND NOT TAGWRIGHT_TESTS AND NOT TAGWRIGHT_SANITIZE AND NOT TAGWRIGHT_FUZZ AND NOT TAGWRIGHT_COVERAGE)
    set (CMAKE_INTERPROCEDURAL_OPTIMIZATION_RELEASE ON)
endif ()

# What libFuzzer steers by. Its main is linked into the fuzz programs only (fuzz/CMakeLists.txt).
if (TAGWRIGHT_FUZZ)
    add_compile_options (-fsanitize=fuzzer-no-link)
    add_compile_definitions (TAGWRIGHT_SMALL_PIECES)
endif ()

# What runs is counted for scripts/coverage.sh, the tests' code too: of an inline function that both use, the linker takes the
# copy of one. The counters are the mapped file itself (%c), one file for each program (%m), so that a process counts also
# when it is forked, killed, or started without an environment. The module that draws names functions as the program does,
# and so has files of its own.
if (TAGWRIGHT_COVERAGE)
    set (module $<STREQUAL:$<TARGET_PROPERTY:TYPE>,MODULE_LIBRARY>)
    set (profile -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/$<${module}:module->%m%c.profraw)
    target_compile_options (tagwright_options INTERFACE
        ${profile} -fcoverage-mapping "SHELL:-mllvm -runtime-counter-relocation")
    add_link_options (${profile})
endif ()
