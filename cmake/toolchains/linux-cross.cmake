# Shared part of the ARM Linux toolchain files: Debian's cross compiler for YXFP_CROSS_TRIPLET,
# its own C and C++ runtime (/usr/<triplet>), target libraries from the tree that
# .ci/install-cross-deps unpacks, and qemu-user as the emulator that runs the tests.
set(CMAKE_SYSTEM_NAME Linux)
# Another compiler (a Yocto or Buildroot SDK's, docs/arm.md) is given with -DCMAKE_C_COMPILER and
# -DCMAKE_CXX_COMPILER.
if(NOT CMAKE_C_COMPILER)
    set(CMAKE_C_COMPILER ${YXFP_CROSS_TRIPLET}-gcc)
endif()
if(NOT CMAKE_CXX_COMPILER)
    set(CMAKE_CXX_COMPILER ${YXFP_CROSS_TRIPLET}-g++)
endif()

# Target libraries unpacked from Debian's packages for the target architecture, or a board's
# own sysroot (a Yocto or Buildroot SDK: docs/arm.md) given as YXFP_CROSS_LIBRARY_ROOT.
if(NOT DEFINED YXFP_CROSS_LIBRARY_ROOT)
    if(DEFINED ENV{YXFP_CROSS_LIBRARY_ROOT})
        set(YXFP_CROSS_LIBRARY_ROOT $ENV{YXFP_CROSS_LIBRARY_ROOT})
    else()
        set(YXFP_CROSS_LIBRARY_ROOT /opt/yxfp-cross/${YXFP_CROSS_TRIPLET})
    endif()
endif()
set(YXFP_CROSS_LIBRARY_ROOT ${YXFP_CROSS_LIBRARY_ROOT}
    CACHE PATH "Target libraries for ${YXFP_CROSS_TRIPLET} (made by .ci/install-cross-deps)")
set(yxfp_target_libdir ${YXFP_CROSS_LIBRARY_ROOT}/usr/lib/${YXFP_CROSS_TRIPLET})

# The runtime of the cross compiler, then the unpacked libraries; never the host's.
set(CMAKE_FIND_ROOT_PATH /usr/${YXFP_CROSS_TRIPLET} ${YXFP_CROSS_LIBRARY_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# pkg-config answers for the target only: its .pc files (architecture-specific ones, then the
# architecture-independent ones such as nlohmann-json's), their paths moved below the root.
# A sysroot that keeps them elsewhere names its folders in YXFP_CROSS_PKG_CONFIG_LIBDIR.
if(NOT YXFP_CROSS_PKG_CONFIG_LIBDIR)
    set(YXFP_CROSS_PKG_CONFIG_LIBDIR
        "${yxfp_target_libdir}/pkgconfig:${YXFP_CROSS_LIBRARY_ROOT}/usr/lib/pkgconfig:${YXFP_CROSS_LIBRARY_ROOT}/usr/share/pkgconfig")
endif()
set(ENV{PKG_CONFIG_LIBDIR} ${YXFP_CROSS_PKG_CONFIG_LIBDIR})
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${YXFP_CROSS_LIBRARY_ROOT})
set(ENV{PKG_CONFIG_PATH} "")

# Debian keeps a library's architecture-dependent headers (OpenSSL's opensslconf.h, which
# libwebsockets.h includes) in usr/include/<triplet>, which its native compiler searches by
# itself; the cross compiler is told.
if(IS_DIRECTORY ${YXFP_CROSS_LIBRARY_ROOT}/usr/include/${YXFP_CROSS_TRIPLET})
    set(CMAKE_C_FLAGS_INIT "-isystem ${YXFP_CROSS_LIBRARY_ROOT}/usr/include/${YXFP_CROSS_TRIPLET}")
    set(CMAKE_CXX_FLAGS_INIT ${CMAKE_C_FLAGS_INIT})
endif()

# ncurses' linker script names its siblings (-ltinfo) without a path, and the libraries name
# their dependencies by soname: both are looked up in the unpacked folder.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${yxfp_target_libdir} -Wl,-rpath-link,${yxfp_target_libdir}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
set(CMAKE_MODULE_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})

# Target programs (tests, test discovery, the simulator in the golden tests) run under
# qemu-user. Its root (-L) is the library tree, whose /lib is the cross compiler's runtime with
# the target's dynamic loader, or that runtime alone when the tree is missing. No binfmt
# registration is needed.
find_program(YXFP_QEMU ${YXFP_QEMU_NAME})
if(NOT YXFP_QEMU)
    set(YXFP_QEMU ${YXFP_QEMU_NAME})
endif()
if(EXISTS ${YXFP_CROSS_LIBRARY_ROOT}/lib)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${YXFP_QEMU} -L ${YXFP_CROSS_LIBRARY_ROOT})
else()
    set(CMAKE_CROSSCOMPILING_EMULATOR ${YXFP_QEMU} -L /usr/${YXFP_CROSS_TRIPLET})
endif()
