# End-to-end tests of the VXI-11 server with real clients: Debian's pyvisa-py
# (TCPIP::127.0.0.1::inst0::INSTR) and lxi-tools. Both find the core port through the
# portmapper on port 111 (the system's rpcbind or the simulator's own), so they do not run at
# the same time.
if(TARGET frontpanel-sim AND YXFP_WITH_VXI11 AND NOT CMAKE_CROSSCOMPILING)
    find_program(YXFP_PYTHON3 python3 PATHS /usr/bin NO_DEFAULT_PATH)
    set(pyvisa_found FALSE)
    if(YXFP_PYTHON3)
        execute_process(COMMAND ${YXFP_PYTHON3} -c "import pyvisa, pyvisa_py"
            RESULT_VARIABLE pyvisa_result OUTPUT_QUIET ERROR_QUIET)
        if(pyvisa_result EQUAL 0)
            set(pyvisa_found TRUE)
        endif()
    endif()
    if(pyvisa_found)
        add_test(NAME vxi11.pyvisa
            COMMAND ${YXFP_PYTHON3} ${CMAKE_CURRENT_LIST_DIR}/pyvisa_vxi11_test.py
                $<TARGET_FILE:frontpanel-sim>)
        set_tests_properties(vxi11.pyvisa PROPERTIES TIMEOUT 120 RESOURCE_LOCK vxi11_portmapper)
    else()
        message(STATUS "YxFrontPanel: VXI-11 pyvisa test not registered (install "
            "python3-pyvisa and python3-pyvisa-py)")
    endif()
    find_program(YXFP_LXI lxi)
    if(YXFP_LXI)
        add_test(NAME vxi11.lxi
            COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/lxi_vxi11_test.sh
                $<TARGET_FILE:frontpanel-sim> ${YXFP_LXI})
        set_tests_properties(vxi11.lxi PROPERTIES TIMEOUT 60 RESOURCE_LOCK vxi11_portmapper)
    else()
        message(STATUS "YxFrontPanel: VXI-11 lxi test not registered (install lxi-tools)")
    endif()
endif()
