# The installed package: CMake config with version file and components, one pkg-config file per
# library, and <yxfrontpanel/components.h>, which says which optional parts were built.
include(CMakePackageConfigHelpers)

set(YXFP_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/YxFrontPanelToolbox)
get_property(YXFP_COMPONENTS GLOBAL PROPERTY YXFP_COMPONENTS)
list(SORT YXFP_COMPONENTS)
message(STATUS "YxFrontPanel: components built: ${YXFP_COMPONENTS}")

# components.h: 1 for each part built, 0 for each part this build left out.
set(YXFP_COMPONENT_DEFINES "")
foreach(component IN LISTS YXFP_KNOWN_COMPONENTS)
    string(TOUPPER ${component} upper)
    if(component IN_LIST YXFP_COMPONENTS)
        string(APPEND YXFP_COMPONENT_DEFINES "#define YXFP_HAS_${upper} 1\n")
    else()
        string(APPEND YXFP_COMPONENT_DEFINES "#define YXFP_HAS_${upper} 0\n")
    endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/components.h.in
    ${YXFP_GENERATED_INCLUDE_DIR}/yxfrontpanel/components.h @ONLY)
install(FILES ${YXFP_GENERATED_INCLUDE_DIR}/yxfrontpanel/components.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/yxfrontpanel)

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

# pkg-config: yxfrontpanel-toolbox for the toolkit with its platform libraries, and one module a
# component that requires what it builds on.
file(RELATIVE_PATH YXFP_PC_RELATIVE_PREFIX
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
function(yxfp_pkg_config name description requires libs)
    set(YXFP_PC_NAME ${name})
    set(YXFP_PC_DESCRIPTION ${description})
    set(YXFP_PC_REQUIRES ${requires})
    set(YXFP_PC_LIBS ${libs})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/yxfrontpanel.pc.in
        ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
yxfp_pkg_config(yxfrontpanel-toolbox "${PROJECT_DESCRIPTION}" ""
    "-lYxFrontPanelToolbox -lYxFrontPanelHW -lYxBase2System -pthread")
foreach(component IN LISTS YXFP_COMPONENTS)
    get_property(target GLOBAL PROPERTY YXFP_COMPONENT_TARGET_${component})
    get_property(requires GLOBAL PROPERTY YXFP_COMPONENT_REQUIRES_${component})
    string(TOLOWER ${component} lower)
    list(JOIN requires " " requires)
    yxfp_pkg_config(yxfrontpanel-${lower} "${PROJECT_NAME} component ${component}"
        "${requires}" "-l${target}")
endforeach()
