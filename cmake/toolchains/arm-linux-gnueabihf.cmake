# 32-bit ARM Linux (armhf) with Debian's cross compiler. Libraries of the
# target come from Debian multiarch (/usr/lib/arm-linux-gnueabihf); tests run
# under qemu-arm, which finds the armhf loader installed by libc6:armhf.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
