# Compiles for macOS 13 and later on a Linux machine, with what scripts/macos-build has fetched to
# build/cross: a compiler that brings Darwin's headers and the list of what its system library offers,
# and for each processor the libraries that we use.
#
# QUILLSTEAD_MACOS_PROCESSOR, which the presets set, is arm64 or x86_64.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILLSTEAD_MACOS_PROCESSOR)
get_filename_component(fetched ${CMAKE_CURRENT_LIST_DIR}/../../build/cross ABSOLUTE)
set(QUILLSTEAD_TEXTS ${fetched}/texts)  # scripts/release has them written

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22)  # the Darwin of macOS 13
set(CMAKE_SYSTEM_PROCESSOR ${QUILLSTEAD_MACOS_PROCESSOR})

set(CMAKE_C_COMPILER ${fetched}/bin/macos-${QUILLSTEAD_MACOS_PROCESSOR}-cc)
set(CMAKE_CXX_COMPILER ${fetched}/bin/macos-${QUILLSTEAD_MACOS_PROCESSOR}-c++)
find_program(CMAKE_AR NAMES llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib-14 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool-14 REQUIRED)

# The compiler is told its target once, with its name; it has no framework and no second processor.
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_OSX_ARCHITECTURES "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "In the compiler's target" FORCE)

# CMake's trials only compile: this compiler makes its C++ library anew for each way to link.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# A function that only a later macOS has is an error. The same bytes wherever it is built, and no line
# numbers, which the compiler adds unasked.
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(CMAKE_CXX_FLAGS_INIT "-Werror=unguarded-availability -g0 -ffile-prefix-map=${root}=.")
# Without it the linker notes the path of each object for debuggers, and the program's UUID depends on them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-s")

set(CMAKE_FIND_ROOT_PATH
  ${fetched}/macos-${QUILLSTEAD_MACOS_PROCESSOR} ${fetched}/cli11/source ${fetched}/tomlplusplus/usr
  ${fetched}/googletest-macos-${QUILLSTEAD_MACOS_PROCESSOR})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
