# Fails unless the README shows the example program exactly as it is built and run.
# Variables: README (README.md), EXAMPLE (the example's main.cpp).
file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```cpp\n${example}```" found)
if(found EQUAL -1)
    message(FATAL_ERROR "${README} does not show ${EXAMPLE} as it is: copy the file into its "
                        "code block again")
endif()
message(STATUS "the README shows ${EXAMPLE} as it is")
