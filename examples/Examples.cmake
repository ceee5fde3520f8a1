# Builds every program in examples/ as a user would: each is a standalone CMake project that
# finds the installed package (find_package) in a staged install of this build, then runs it
# or its own test suite. Included by tests/CMakeLists.txt.
set(YXFP_EXAMPLES_DIR ${CMAKE_CURRENT_LIST_DIR})
set(YXFP_EXAMPLES_WORK ${CMAKE_BINARY_DIR}/examples)
set(YXFP_EXAMPLES_PREFIX ${YXFP_EXAMPLES_WORK}/prefix)
set(YXFP_EXAMPLES_FLAGS "${CMAKE_CXX_FLAGS} -Wall -Wextra -Wpedantic")
if(YXFP_WERROR)
    string(APPEND YXFP_EXAMPLES_FLAGS " -Werror")
endif()

add_test(NAME examples.install
    COMMAND ${CMAKE_COMMAND} --install ${CMAKE_BINARY_DIR} --prefix ${YXFP_EXAMPLES_PREFIX})
set_tests_properties(examples.install PROPERTIES FIXTURES_SETUP yxfp_examples_installed)

# A cross build has GoogleTest for the target only in its own build tree (built from sources);
# the examples' FindGTest is pointed at those libraries (the headers are the host's, the same
# version).
set(YXFP_EXAMPLES_TARGET_GTEST "")
if(CMAKE_CROSSCOMPILING AND TARGET gmock_main)
    set(YXFP_EXAMPLES_TARGET_GTEST
        -DGTEST_LIBRARY=$<TARGET_FILE:gtest> -DGTEST_MAIN_LIBRARY=$<TARGET_FILE:gtest_main>
        -DGMOCK_LIBRARY=$<TARGET_FILE:gmock> -DGMOCK_MAIN_LIBRARY=$<TARGET_FILE:gmock_main>)
endif()

# yxfp_add_example(NAME RUN PROGRAM [ARGS...]): build examples/NAME, then run PROGRAM from its
# build folder; the test passes when it exits with 0.
# yxfp_add_example(NAME CTEST): build examples/NAME, then run its own tests with ctest.
function(yxfp_add_example name mode)
    set(build_dir ${YXFP_EXAMPLES_WORK}/${name})
    if(mode STREQUAL "CTEST")
        set(test_command ${CMAKE_CTEST_COMMAND} --test-dir ${build_dir} --output-on-failure
            --no-tests=error)
    elseif(mode STREQUAL "RUN")
        set(test_command ${YXFP_OUTSIDE_RUN} ${ARGN})
    else()
        message(FATAL_ERROR "yxfp_add_example(${name}): RUN PROGRAM or CTEST, not '${mode}'")
    endif()
    add_test(NAME example.${name}
        COMMAND ${CMAKE_CTEST_COMMAND}
            --build-and-test ${YXFP_EXAMPLES_DIR}/${name} ${build_dir}
            --build-generator ${CMAKE_GENERATOR}
            --build-options
                -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
                "-DCMAKE_CXX_FLAGS=${YXFP_EXAMPLES_FLAGS}"
                -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
                -DCMAKE_PREFIX_PATH=${YXFP_EXAMPLES_PREFIX}
                ${YXFP_OUTSIDE_CROSS_OPTIONS} ${YXFP_EXAMPLES_TARGET_GTEST}
            --test-command ${test_command})
    set_tests_properties(example.${name} PROPERTIES FIXTURES_REQUIRED yxfp_examples_installed)
endfunction()

# One line per example.
yxfp_add_example(hello_menu RUN hello_menu)
yxfp_add_example(test_my_menu CTEST)
