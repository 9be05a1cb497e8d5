# 32-bit ARM with hardware floating point, as Debian's armhf: the kind of board that cameras carry.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
# Debian's packages of both architectures stand side by side: libraries only from ARM's folder, headers are shared.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_IGNORE_PREFIX_PATH /usr/local)
set(CMAKE_SYSTEM_LIBRARY_PATH /usr/lib/arm-linux-gnueabihf)
set(CMAKE_IGNORE_PATH /usr/lib/x86_64-linux-gnu /usr/lib/x86_64-linux-gnu/cmake)
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon")
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabihf/pkgconfig:/usr/share/pkgconfig)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
