# Cross-builds for Linux on AArch64 with Debian's multiarch packages (scripts/install-dependencies.sh
# --aarch64 installs them) and runs what it built under qemu's user emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

# The target's loader and libraries are installed beside the host's: the root is /.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /)

# pkg-config of the target's packages.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)

# Python's headers are the same for every processor, but for one that the compiler finds; what the
# interpreter says of its own is not of the target.
set(Python3_INCLUDE_DIR /usr/include/python3.11)
