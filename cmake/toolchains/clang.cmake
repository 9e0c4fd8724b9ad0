# Compiles with clang: version 14, the oldest that we build with, where it is there.
find_program(CMAKE_CXX_COMPILER NAMES clang++-14 clang++ REQUIRED)
