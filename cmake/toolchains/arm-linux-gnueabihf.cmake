# 32-bit ARM Linux with hard float (Cortex-A, ARMv7-A, Thumb-2, VFPv3-D16: Debian's armhf
# defaults) with Debian's g++-arm-linux-gnueabihf; tests run under qemu-arm. Target libraries:
# .ci/install-cross-deps.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(YXFP_CROSS_TRIPLET arm-linux-gnueabihf)
set(YXFP_QEMU_NAME qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
