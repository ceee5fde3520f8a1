# The HD44780 controller model (tests/support/hd44780_model.*): a static library for the test
# suite and for the simulator's --display hd44780. Included by both; defined once.
include_guard(GLOBAL)
add_library(yxfp_hd44780_model STATIC ${CMAKE_CURRENT_LIST_DIR}/hd44780_model.cpp)
target_include_directories(yxfp_hd44780_model PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(yxfp_hd44780_model PUBLIC YxFrontPanelToolbox::YxFrontPanelHW)
yxfp_set_warnings(yxfp_hd44780_model)
