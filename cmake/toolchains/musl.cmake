# Compiles for Linux with musl, a small C library for static programs, with what scripts/lib/cross has
# fetched to build/cross: a compiler that brings it, and for each processor the libraries that we use.
#
# QUILLSTEAD_MUSL_PLATFORM, which the presets set, is linux-x64 or linux-arm64.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILLSTEAD_MUSL_PLATFORM)
get_filename_component(fetched ${CMAKE_CURRENT_LIST_DIR}/../../build/cross ABSOLUTE)
set(QUILLSTEAD_TEXTS ${fetched}/texts)  # scripts/release has them written

# Its headers do not tell its version.
set(version_file ${fetched}/compiler/ziglang/lib/libc/musl/src/internal/version.h)
if(EXISTS ${version_file})
  file(READ ${version_file} version)
  string(REGEX MATCH "[0-9.]+" QUILLSTEAD_MUSL_VERSION ${version})
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
if(QUILLSTEAD_MUSL_PLATFORM STREQUAL "linux-arm64")
  set(CMAKE_SYSTEM_PROCESSOR aarch64)
endif()

set(CMAKE_C_COMPILER ${fetched}/bin/${QUILLSTEAD_MUSL_PLATFORM}-cc)
set(CMAKE_CXX_COMPILER ${fetched}/bin/${QUILLSTEAD_MUSL_PLATFORM}-c++)
find_program(CMAKE_AR NAMES llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib-14 REQUIRED)

# The same bytes wherever it is built, and no line numbers, which the compiler adds unasked.
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(CMAKE_C_FLAGS_INIT "-g0 -ffile-prefix-map=${root}=.")
set(CMAKE_CXX_FLAGS_INIT "-g0 -ffile-prefix-map=${root}=.")

# CMake's trials only compile: this compiler makes its C++ library anew for each way to link.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(QUILLSTEAD_MUSL_ALLOCATOR ${fetched}/${QUILLSTEAD_MUSL_PLATFORM}/lib/allocator)

set(CMAKE_FIND_ROOT_PATH
  ${fetched}/${QUILLSTEAD_MUSL_PLATFORM} ${fetched}/cli11/source ${fetched}/tomlplusplus/usr
  ${fetched}/googletest-${QUILLSTEAD_MUSL_PLATFORM})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
