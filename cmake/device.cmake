# A toolchain file for the terminal's processor:
#
#   cmake --toolchain cmake/device.cmake -DUTI_CROSS=arm-linux-gnueabihf ...
#
# UTI_CROSS is what the names of the compiler's commands begin with, up to the dash before "gcc",
# with their folder where they are not in PATH: /opt/vendor/bin/arm-vendor-linux-gnueabi. Flags of
# the processor go into CMAKE_C_FLAGS and CMAKE_CXX_FLAGS, the vendor's root into CMAKE_SYSROOT.
# With qemu-user installed, tests run under it.
set(UTI_CROSS arm-linux-gnueabihf CACHE STRING "What the names of the cross compiler's commands begin with")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES UTI_CROSS)

cmake_path(GET UTI_CROSS FILENAME uti_triple)
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${uti_triple}")
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${UTI_CROSS}-gcc)
set(CMAKE_CXX_COMPILER ${UTI_CROSS}-g++)

# Libraries are the device's; programs and the packages of CMAKE_PREFIX_PATH are looked for as ever.
if(EXISTS /usr/${uti_triple})
  list(APPEND CMAKE_FIND_ROOT_PATH /usr/${uti_triple})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)

find_program(UTI_EMULATOR NAMES qemu-${CMAKE_SYSTEM_PROCESSOR} qemu-${CMAKE_SYSTEM_PROCESSOR}-static)
mark_as_advanced(UTI_EMULATOR)
if(UTI_EMULATOR)
  if(CMAKE_SYSROOT)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${UTI_EMULATOR} -L ${CMAKE_SYSROOT})
  else()
    set(CMAKE_CROSSCOMPILING_EMULATOR ${UTI_EMULATOR} -L /usr/${uti_triple})
  endif()
endif()
