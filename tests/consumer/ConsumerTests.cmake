# Proves the packaging: install into a scratch prefix, then build small outside projects
# against it (find_package, pkg-config) and against the source tree (add_subdirectory).
set(YXFP_CONSUMER_DIR ${CMAKE_CURRENT_LIST_DIR})
set(YXFP_CONSUMER_WORK ${CMAKE_BINARY_DIR}/consumer)
set(YXFP_CONSUMER_PREFIX ${YXFP_CONSUMER_WORK}/prefix)
set(YXFP_CONSUMER_OPTIONS
    -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
    "-DCMAKE_CXX_FLAGS=${CMAKE_CXX_FLAGS}"
    -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
    ${YXFP_OUTSIDE_CROSS_OPTIONS})
set(YXFP_CONSUMER_RUN ${YXFP_OUTSIDE_RUN})

add_test(NAME consumer.install
    COMMAND ${CMAKE_COMMAND} --install ${CMAKE_BINARY_DIR} --prefix ${YXFP_CONSUMER_PREFIX})
set_tests_properties(consumer.install PROPERTIES FIXTURES_SETUP yxfp_installed)

add_test(NAME consumer.find_package
    COMMAND ${CMAKE_CTEST_COMMAND}
        --build-and-test ${YXFP_CONSUMER_DIR}/find_package ${YXFP_CONSUMER_WORK}/find_package
        --build-generator ${CMAKE_GENERATOR}
        --build-options ${YXFP_CONSUMER_OPTIONS} -DCMAKE_PREFIX_PATH=${YXFP_CONSUMER_PREFIX}
        --test-command ${YXFP_CONSUMER_RUN} ${YXFP_CONSUMER_WORK}/find_package/consumer)
set_tests_properties(consumer.find_package PROPERTIES
    FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "consumer OK: 192.168.1.2")

add_test(NAME consumer.pkg_config
    COMMAND sh ${YXFP_CONSUMER_DIR}/pkg_config_consumer.sh ${YXFP_CONSUMER_PREFIX}
        ${CMAKE_CXX_COMPILER} "${CMAKE_CXX_FLAGS} ${CMAKE_EXE_LINKER_FLAGS}"
        ${YXFP_CONSUMER_DIR}/consumer_main.cpp ${YXFP_CONSUMER_WORK}/pkg_config ${YXFP_CONSUMER_RUN})
set_tests_properties(consumer.pkg_config PROPERTIES
    FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "consumer OK: 192.168.1.2")

# The installed simulator starts from the prefix on its own (no LD_LIBRARY_PATH): the program's
# run path leads to the installed libraries.
if(TARGET frontpanel-sim)
    add_test(NAME consumer.installed_simulator
        COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${YXFP_CONSUMER_RUN}
            ${YXFP_CONSUMER_PREFIX}/${CMAKE_INSTALL_BINDIR}/frontpanel-sim
            --keys "down up" --print last)
    set_tests_properties(consumer.installed_simulator PROPERTIES
        FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "Network")
endif()

# The pkg-config flags leave the language standard to the product build: a C++20 build that
# uses them stays C++20.
add_test(NAME consumer.pkg_config_cxx20
    COMMAND sh ${YXFP_CONSUMER_DIR}/pkg_config_consumer.sh ${YXFP_CONSUMER_PREFIX}
        ${CMAKE_CXX_COMPILER}
        "${CMAKE_CXX_FLAGS} ${CMAKE_EXE_LINKER_FLAGS} -std=c++20 -DYXFP_EXPECT_CXX20"
        ${YXFP_CONSUMER_DIR}/consumer_main.cpp ${YXFP_CONSUMER_WORK}/pkg_config_cxx20
        ${YXFP_CONSUMER_RUN})
set_tests_properties(consumer.pkg_config_cxx20 PROPERTIES
    FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "consumer OK: 192.168.1.2")

add_test(NAME consumer.add_subdirectory
    COMMAND ${CMAKE_CTEST_COMMAND}
        --build-and-test ${YXFP_CONSUMER_DIR}/add_subdirectory
            ${YXFP_CONSUMER_WORK}/add_subdirectory
        --build-generator ${CMAKE_GENERATOR}
        --build-options ${YXFP_CONSUMER_OPTIONS} -DYXFP_SOURCE_DIR=${PROJECT_SOURCE_DIR}
        --test-command ${YXFP_CONSUMER_RUN} ${YXFP_CONSUMER_WORK}/add_subdirectory/consumer)
set_tests_properties(consumer.add_subdirectory PROPERTIES
    PASS_REGULAR_EXPRESSION "consumer OK: 192.168.1.2")

# The terminal examples, built against the same install and run with their input closed (they
# then end by themselves): examples/first_panel, the README's runtime program, and
# examples/bench_supply, the instrument with persistent settings.
function(yxfp_add_terminal_example name)
    add_test(NAME consumer.example_${name}
        COMMAND ${CMAKE_CTEST_COMMAND}
            --build-and-test ${PROJECT_SOURCE_DIR}/examples/${name} ${YXFP_CONSUMER_WORK}/${name}
            --build-generator ${CMAKE_GENERATOR}
            --build-options ${YXFP_CONSUMER_OPTIONS} -DCMAKE_PREFIX_PATH=${YXFP_CONSUMER_PREFIX}
            --test-command sh ${YXFP_CONSUMER_DIR}/run_with_input_closed.sh
                ${YXFP_CONSUMER_WORK}/${name}/${name} ${YXFP_CONSUMER_RUN})
    set_tests_properties(consumer.example_${name} PROPERTIES
        FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "${name} ended with its input")
endfunction()
if(TARGET YxFrontPanelTerminal)
    yxfp_add_terminal_example(first_panel)
endif()
if(TARGET YxFrontPanelTerminal AND TARGET YxFrontPanelSettings)
    yxfp_add_terminal_example(bench_supply)
endif()

# find_package with COMPONENTS: every component this build has is found and linked; one it
# lacks stops the configuration with a message that names it.
get_property(YXFP_BUILT_COMPONENTS GLOBAL PROPERTY YXFP_COMPONENTS)
list(JOIN YXFP_BUILT_COMPONENTS "," YXFP_BUILT_COMPONENT_LIST)
add_test(NAME consumer.find_package_components
    COMMAND ${CMAKE_CTEST_COMMAND}
        --build-and-test ${YXFP_CONSUMER_DIR}/find_package_components
            ${YXFP_CONSUMER_WORK}/find_package_components
        --build-generator ${CMAKE_GENERATOR}
        --build-options ${YXFP_CONSUMER_OPTIONS} -DCMAKE_PREFIX_PATH=${YXFP_CONSUMER_PREFIX}
            -DWANTED=${YXFP_BUILT_COMPONENT_LIST}
        --test-command ${YXFP_CONSUMER_RUN}
            ${YXFP_CONSUMER_WORK}/find_package_components/components_consumer)
set_tests_properties(consumer.find_package_components PROPERTIES
    FIXTURES_REQUIRED yxfp_installed PASS_REGULAR_EXPRESSION "components OK")
set(YXFP_ABSENT_COMPONENT NotAPart)
foreach(component IN LISTS YXFP_KNOWN_COMPONENTS)
    if(NOT component IN_LIST YXFP_BUILT_COMPONENTS)
        set(YXFP_ABSENT_COMPONENT ${component})
    endif()
endforeach()
add_test(NAME consumer.find_package_missing_component
    COMMAND ${CMAKE_COMMAND} -S ${YXFP_CONSUMER_DIR}/find_package_components
        -B ${YXFP_CONSUMER_WORK}/find_package_missing_component ${YXFP_CONSUMER_OPTIONS}
        -DCMAKE_PREFIX_PATH=${YXFP_CONSUMER_PREFIX} -DWANTED=Runtime,${YXFP_ABSENT_COMPONENT})
set_tests_properties(consumer.find_package_missing_component PROPERTIES
    FIXTURES_REQUIRED yxfp_installed
    PASS_REGULAR_EXPRESSION "component\\(s\\) ${YXFP_ABSENT_COMPONENT} not part of the installation")
add_test(NAME consumer.example_first_panel_in_readme
    COMMAND ${CMAKE_COMMAND} -DREADME=${PROJECT_SOURCE_DIR}/README.md
        -DEXAMPLE=${PROJECT_SOURCE_DIR}/examples/first_panel/main.cpp
        -P ${YXFP_CONSUMER_DIR}/readme_shows_example.cmake)
