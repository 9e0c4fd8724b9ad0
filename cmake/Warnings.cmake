# Interface target `quillstead_warnings`: the warnings every target of ours compiles with.
option(QUILLSTEAD_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

add_library(quillstead_warnings INTERFACE)
target_compile_options(quillstead_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wcast-qual
  -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wformat=2
  -Wimplicit-fallthrough
  # What is added to an enumeration has to be answered wherever that one is.
  -Werror=switch
  # GCC 12 sees uninitialised members in moved std::variants, and overlaps in added std::strings.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${QUILLSTEAD_WARNINGS_AS_ERRORS}>:-Werror>)
