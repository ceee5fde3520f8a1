# Options shared by every target the project builds.

# Warnings for a target of ours; PRIVATE so that users of the libraries never inherit them.
function(yxfp_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wundef)
    if(YXFP_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# One of the three shared libraries: alias in the package namespace, C++17 for users,
# include directories for the build and the install tree, hidden visibility, version and SONAME.
function(yxfp_setup_library target include_dir)
    add_library(YxFrontPanelToolbox::${target} ALIAS ${target})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${include_dir}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}
        # Installed libraries find their siblings next to themselves, wherever the tree lands.
        INSTALL_RPATH "$ORIGIN")
    yxfp_set_warnings(${target})
    if(YXFP_STRICT_WARNINGS)
        # Opt-in: implicit narrowing, shadowed names, C casts and hidden overloads.
        target_compile_options(${target} PRIVATE
            -Wshadow -Wconversion -Wold-style-cast -Woverloaded-virtual)
    endif()
    install(TARGETS ${target} EXPORT YxFrontPanelToolboxTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY ${include_dir}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endfunction()

# An installed program: it finds the installed libraries relative to itself, so the tree runs
# from any prefix without LD_LIBRARY_PATH.
function(yxfp_install_program target)
    file(RELATIVE_PATH libdir_from_bindir
        ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libdir_from_bindir}")
    install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# An optional library: the option `option_name` is ON by default when pkg-config found
# `prefix` (its _FOUND variable), a clear status line says what is built, and asking for it
# without the library stops the configuration with the Debian package to install.
function(yxfp_optional_dependency option_name prefix module debian_package what)
    option(${option_name} "${what} (needs ${module})" ${${prefix}_FOUND})
    if(${option_name} AND NOT ${prefix}_FOUND)
        message(FATAL_ERROR "${option_name} is ON but ${module} was not found. Install it "
            "(Debian: apt-get install ${debian_package}) or configure with -D${option_name}=OFF.")
    endif()
    if(${option_name})
        message(STATUS "YxFrontPanel: ${what}: ON (${module} ${${prefix}_VERSION})")
    elseif(${prefix}_FOUND)
        message(STATUS "YxFrontPanel: ${what}: OFF (${option_name}=OFF; ${module} "
            "${${prefix}_VERSION} is installed)")
    elseif(CMAKE_CROSSCOMPILING)
        message(STATUS "YxFrontPanel: ${what}: OFF (left out of this ${CMAKE_SYSTEM_PROCESSOR} "
            "cross build: ${module} for the target was not found; ${option_name}=ON requires it)")
    else()
        message(STATUS "YxFrontPanel: ${what}: OFF (${module} not found; Debian package "
            "${debian_package}; ${option_name}=ON requires it)")
    endif()
endfunction()

# yxfp_component(Component target required-pc-module...): `target` is the optional part
# `Component` of the installation. The package's COMPONENTS, the generated
# <yxfrontpanel/components.h> and one pkg-config file per component (yxfrontpanel-<component>.pc,
# requiring the given modules) are made from these records.
function(yxfp_component component target)
    set_property(GLOBAL APPEND PROPERTY YXFP_COMPONENTS ${component})
    set_property(GLOBAL PROPERTY YXFP_COMPONENT_TARGET_${component} ${target})
    set_property(GLOBAL PROPERTY YXFP_COMPONENT_REQUIRES_${component} ${ARGN})
endfunction()
