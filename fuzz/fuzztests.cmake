# Builds the fuzzers as a separate clang configuration of this source tree (fuzz/CMakeLists.txt)
# and runs each one as a test: its known reproducers first, then a bounded fuzzing session
# from its seed corpus (run-fuzzer.sh). Included by the top level when the tests are built.
include(ExternalProject)
include(${CMAKE_CURRENT_LIST_DIR}/targets.cmake)

option(KAIRON_FUZZ_TESTS "Build the fuzzers with clang and run them as tests" ON)
set(KAIRON_FUZZ_SECONDS 20 CACHE STRING "How long each fuzz test fuzzes, in seconds")

if(KAIRON_FUZZ_TESTS)
    find_program(KAIRON_FUZZ_CXX NAMES clang++ clang++-14 DOC "The compiler of the fuzzers")
    if(NOT KAIRON_FUZZ_CXX)
        message(FATAL_ERROR "The fuzz tests need clang and libFuzzer (Debian: clang and "
                            "libclang-rt-14-dev, installed by tools/kairon.sh test). "
                            "-DKAIRON_FUZZ_TESTS=OFF builds the tests without them.")
    endif()

    set(fuzz_dir ${CMAKE_CURRENT_LIST_DIR})
    set(fuzz_build ${CMAKE_BINARY_DIR}/fuzz-build)
    set(fuzz_binaries)
    foreach(name IN LISTS KAIRON_FUZZERS)
        list(APPEND fuzz_binaries ${fuzz_build}/fuzz/fuzz_${name})
    endforeach()

    # Always handed to the inner build, which alone knows what changed in the sources.
    ExternalProject_Add(kairon_fuzzers
        SOURCE_DIR ${PROJECT_SOURCE_DIR}
        BINARY_DIR ${fuzz_build}
        CMAKE_ARGS
            -DCMAKE_CXX_COMPILER=${KAIRON_FUZZ_CXX}
            -DCMAKE_BUILD_TYPE=RelWithDebInfo
            -DKAIRON_FUZZ=ON
        INSTALL_COMMAND ""
        BUILD_ALWAYS ON
        BUILD_BYPRODUCTS ${fuzz_binaries}
        USES_TERMINAL_CONFIGURE ON
        USES_TERMINAL_BUILD ON
    )

    foreach(name IN LISTS KAIRON_FUZZERS)
        set(dict "")
        if(KAIRON_FUZZ_DICT_${name})
            set(dict ${fuzz_dir}/${KAIRON_FUZZ_DICT_${name}})
        endif()
        add_test(NAME fuzz_${name}
            COMMAND ${fuzz_dir}/run-fuzzer.sh ${fuzz_build}/fuzz/fuzz_${name}
                    ${fuzz_dir}/corpus/${name} ${fuzz_dir}/regressions/${name} "${dict}"
                    ${KAIRON_FUZZ_SECONDS} ${CMAKE_BINARY_DIR}/fuzz-findings/${name})
        # A high cost makes ctest start the fuzzers first, side by side, rather than next to
        # the tests that measure latencies, and keeps them from ending the run alone.
        set_tests_properties(fuzz_${name} PROPERTIES
            LABELS fuzz
            TIMEOUT 120
            COST 1000
            ENVIRONMENT "TZ=America/Los_Angeles;LC_ALL=C.UTF-8;LANG=C.UTF-8")
    endforeach()
endif()
