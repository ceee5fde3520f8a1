# The installed package: CMake config with version file, and a pkg-config file.
include(CMakePackageConfigHelpers)

set(YXFP_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/YxFrontPanelToolbox)

install(EXPORT YxFrontPanelToolboxTargets
    NAMESPACE YxFrontPanelToolbox::
    DESTINATION ${YXFP_CMAKE_INSTALL_DIR})

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/YxFrontPanelToolboxConfig.cmake.in
    ${PROJECT_BINARY_DIR}/YxFrontPanelToolboxConfig.cmake
    INSTALL_DESTINATION ${YXFP_CMAKE_INSTALL_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/YxFrontPanelToolboxConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/YxFrontPanelToolboxConfig.cmake
    ${PROJECT_BINARY_DIR}/YxFrontPanelToolboxConfigVersion.cmake
    DESTINATION ${YXFP_CMAKE_INSTALL_DIR})

file(RELATIVE_PATH YXFP_PC_RELATIVE_PREFIX
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/yxfrontpanel-toolbox.pc.in
    ${PROJECT_BINARY_DIR}/yxfrontpanel-toolbox.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/yxfrontpanel-toolbox.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
