# One test per scripted walk in this folder: tests/golden/NAME.keys against NAME.expected.
if(TARGET frontpanel-sim)
    # A cross-built simulator runs under the emulator (a list, passed joined by '|').
    string(REPLACE ";" "|" golden_emulator "${CMAKE_CROSSCOMPILING_EMULATOR}")
    file(GLOB golden_scripts CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.keys)
    # A walk that needs an optional part says so in a line "# needs: PART..." (component
    # names); it is run where those parts were built.
    get_property(golden_components GLOBAL PROPERTY YXFP_COMPONENTS)
    foreach(script IN LISTS golden_scripts)
        get_filename_component(name ${script} NAME_WE)
        file(STRINGS ${script} golden_needs REGEX "^# needs:")
        string(REGEX REPLACE "^# needs:" "" golden_needs "${golden_needs}")
        separate_arguments(golden_needs)
        set(golden_runs TRUE)
        foreach(part IN LISTS golden_needs)
            if(NOT part IN_LIST golden_components)
                set(golden_runs FALSE)
            endif()
        endforeach()
        if(NOT golden_runs)
            continue()
        endif()
        add_test(NAME golden.${name}
            COMMAND ${CMAKE_COMMAND} -DSIM=$<TARGET_FILE:frontpanel-sim>
                "-DEMULATOR=${golden_emulator}" -DKEYS=${script}
                -DEXPECTED=${CMAKE_CURRENT_LIST_DIR}/${name}.expected
                -P ${CMAKE_CURRENT_LIST_DIR}/run_golden.cmake)
    endforeach()

    # The demo driven over its command server by frontpanel-ctl.
    if(TARGET frontpanel-ctl)
        add_test(NAME golden.remote_demo_over_ctl
            COMMAND bash ${CMAKE_CURRENT_LIST_DIR}/remote/run_remote_golden.sh
                $<TARGET_FILE:frontpanel-sim> $<TARGET_FILE:frontpanel-ctl>
                ${CMAKE_CURRENT_LIST_DIR}/remote/demo_over_ctl.commands
                ${CMAKE_CURRENT_LIST_DIR}/remote/demo_over_ctl.expected
                ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()

    # The real program's exit statuses and messages, and its end on SIGINT and SIGTERM.
    set(golden_parts)
    foreach(part EVDEV GPIOD REMOTE SETTINGS WEB TERMINAL)
        if(YXFP_WITH_${part})
            list(APPEND golden_parts YXFP_SIM_HAS_${part}=1)
        else()
            list(APPEND golden_parts YXFP_SIM_HAS_${part}=0)
        endif()
    endforeach()
    add_test(NAME simulator.exit_status
        COMMAND ${CMAKE_COMMAND} -E env ${golden_parts}
            bash ${CMAKE_CURRENT_LIST_DIR}/../tools/simulator_exit_test.sh
            $<TARGET_FILE:frontpanel-sim> ${CMAKE_CROSSCOMPILING_EMULATOR})
    set_tests_properties(simulator.exit_status PROPERTIES TIMEOUT 120)

    # The real program in a real terminal: tmux runs it, sends keys, reads the screen.
    find_program(YXFP_TMUX tmux)
    if(YXFP_TMUX AND TARGET YxFrontPanelTerminal)
        add_test(NAME simulator.tmux
            COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/../tools/tmux_sim_test.sh
                ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:frontpanel-sim>)
    endif()
endif()
