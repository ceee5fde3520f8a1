# End-to-end tests of the command server with real instrument-control clients: Debian's pyvisa
# with its pure-Python backend pyvisa-py drives frontpanel-sim. Registered only where a python3
# imports both (python3-pyvisa, python3-pyvisa-py; .ci/install-deps installs them).
if(TARGET frontpanel-sim AND YXFP_WITH_REMOTE AND NOT CMAKE_CROSSCOMPILING)
    # Debian's interpreter first: the packages live in its dist-packages, which a python3 of
    # another installation earlier in PATH does not see.
    find_program(YXFP_PYVISA_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
    if(NOT YXFP_PYVISA_PYTHON)
        find_program(YXFP_PYVISA_PYTHON NAMES python3)
    endif()
    set(yxfp_pyvisa_ok 1)
    if(YXFP_PYVISA_PYTHON)
        execute_process(COMMAND ${YXFP_PYVISA_PYTHON} -c "import pyvisa, pyvisa_py"
            RESULT_VARIABLE yxfp_pyvisa_ok OUTPUT_QUIET ERROR_QUIET)
    endif()
    if(yxfp_pyvisa_ok EQUAL 0)
        message(STATUS "YxFrontPanel: pyvisa end-to-end tests: ON (${YXFP_PYVISA_PYTHON})")
        set(yxfp_pyvisa_arguments)
        if(NOT YXFP_WITH_PNG)
            list(APPEND yxfp_pyvisa_arguments --no-png)
        endif()
        add_test(NAME remote.pyvisa_socket
            COMMAND ${YXFP_PYVISA_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/pyvisa_socket_test.py
                $<TARGET_FILE:frontpanel-sim> ${yxfp_pyvisa_arguments})
        set_tests_properties(remote.pyvisa_socket PROPERTIES TIMEOUT 120)
    else()
        message(STATUS "YxFrontPanel: pyvisa end-to-end tests: OFF "
                       "(no python3 imports pyvisa and pyvisa_py: python3-pyvisa python3-pyvisa-py)")
    endif()

    # Every resolved address is tried: a name whose first address refuses still connects.
    find_library(YXFP_NSS_WRAPPER_LIBRARY NAMES nss_wrapper)
    if(TARGET frontpanel-ctl AND YXFP_NSS_WRAPPER_LIBRARY)
        message(STATUS "YxFrontPanel: resolver test with nss_wrapper: ON")
        add_test(NAME remote.every_resolved_address
            COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/every_address_test.sh
                $<TARGET_FILE:frontpanel-sim> $<TARGET_FILE:frontpanel-ctl>
                ${YXFP_NSS_WRAPPER_LIBRARY})
        set_tests_properties(remote.every_resolved_address PROPERTIES TIMEOUT 60)
    elseif(TARGET frontpanel-ctl)
        message(STATUS "YxFrontPanel: resolver test with nss_wrapper: OFF (libnss-wrapper)")
    endif()
endif()
