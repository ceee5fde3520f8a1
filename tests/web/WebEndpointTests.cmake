# The web panel's endpoints checked from outside against the running simulator: the LXI
# identification parsed with python3's xml.etree and compared with *IDN? over the raw socket,
# the screenshot with HCOPy:SDUMp:DATA?'s. Needs only python3's standard library.
if(TARGET frontpanel-sim AND YXFP_WITH_WEB AND YXFP_WITH_REMOTE AND NOT CMAKE_CROSSCOMPILING)
    find_program(YXFP_WEB_PYTHON NAMES python3)
    if(YXFP_WEB_PYTHON)
        set(yxfp_lxi_arguments)
        set(yxfp_lxi_properties TIMEOUT 60)
        if(YXFP_WITH_VXI11)
            # The VXI-11 server answers the portmapper on port 111, which the VXI-11 tests use.
            list(APPEND yxfp_lxi_arguments --vxi11)
            list(APPEND yxfp_lxi_properties RESOURCE_LOCK vxi11_portmapper)
        endif()
        if(NOT YXFP_WITH_PNG)
            list(APPEND yxfp_lxi_arguments --no-png)
        endif()
        add_test(NAME web.lxi_identification
            COMMAND ${YXFP_WEB_PYTHON} ${CMAKE_CURRENT_LIST_DIR}/lxi_identification_test.py
                $<TARGET_FILE:frontpanel-sim> ${yxfp_lxi_arguments})
        set_tests_properties(web.lxi_identification PROPERTIES ${yxfp_lxi_properties})
    else()
        message(STATUS "YxFrontPanel: web panel endpoint test not registered (no python3)")
    endif()
endif()
