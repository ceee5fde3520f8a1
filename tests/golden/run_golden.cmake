# Runs one scripted walk of frontpanel-sim and compares the printed frames with the checked-in
# expectation. Variables: SIM (the program), KEYS (the .keys file), EXPECTED (the .expected
# file), EMULATOR (optional: the command that runs a cross-built SIM, its words joined by '|').
# A line "# options: ..." in the key script adds command-line options (e.g. --size 16x2);
# @SETTINGS_FILE@ in them names a settings file of this walk that is removed before every run.
# With the environment variable YXFP_UPDATE_GOLDEN=1 the expectation is rewritten instead.
file(STRINGS ${KEYS} option_lines REGEX "^# options:")
set(options "")
foreach(line IN LISTS option_lines)
    string(REGEX REPLACE "^# options:[ ]*" "" line "${line}")
    separate_arguments(line_options UNIX_COMMAND "${line}")
    list(APPEND options ${line_options})
endforeach()

if(options MATCHES "@SETTINGS_FILE@")
    get_filename_component(walk ${KEYS} NAME_WE)
    set(settings_file ${CMAKE_CURRENT_BINARY_DIR}/${walk}.settings.json)
    file(GLOB stale_settings ${settings_file} ${settings_file}.*)
    if(stale_settings)
        file(REMOVE ${stale_settings})
    endif()
    string(REPLACE "@SETTINGS_FILE@" "${settings_file}" options "${options}")
endif()

string(REPLACE "|" ";" emulator "${EMULATOR}")
execute_process(
    COMMAND ${emulator} ${SIM} --keys-file ${KEYS} --print all ${options}
    OUTPUT_VARIABLE actual
    ERROR_VARIABLE errors
    RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "frontpanel-sim failed (${status}): ${errors}")
endif()

if("$ENV{YXFP_UPDATE_GOLDEN}" STREQUAL "1")
    file(WRITE ${EXPECTED} "${actual}")
    message(STATUS "rewrote ${EXPECTED}")
    return()
endif()

file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
    get_filename_component(name ${KEYS} NAME_WE)
    set(actual_file ${CMAKE_CURRENT_BINARY_DIR}/${name}.actual)
    file(WRITE ${actual_file} "${actual}")
    execute_process(COMMAND diff -u ${EXPECTED} ${actual_file})
    message(FATAL_ERROR "the frames differ from ${EXPECTED} (actual output in ${actual_file}; "
                        "YXFP_UPDATE_GOLDEN=1 ctest -R golden rewrites the expectations)")
endif()
