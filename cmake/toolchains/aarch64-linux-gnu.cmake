# 64-bit ARM Linux (Cortex-A, AArch64) with Debian's g++-aarch64-linux-gnu; tests run under
# qemu-aarch64. Target libraries: .ci/install-cross-deps.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(YXFP_CROSS_TRIPLET aarch64-linux-gnu)
set(YXFP_QEMU_NAME qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
