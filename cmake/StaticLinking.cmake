# Interface target `quillstead_static`: programs that start as fast as the system allows.
# On Linux a fully static, position-dependent executable has no dynamic loader to wait for and no
# relocations to apply. macOS has no static system library; there only unused code is dropped.
# Sanitizers need the dynamic loader, so they switch this off.
#
# What is built with musl also has its parts in an order that touches few pages, leaves out what only prints
# names of exceptions, and has musl's earlier allocator: docs/decisions.md says why.
#
# Interface target `quillstead_position`: the code such programs are made of, which every target that
# shares it has to agree on.
add_library(quillstead_static INTERFACE)
add_library(quillstead_position INTERFACE)
if(APPLE)
  target_link_options(quillstead_static INTERFACE -Wl,-dead_strip)
elseif(NOT QUILLSTEAD_SANITIZE)
  target_compile_options(quillstead_position INTERFACE -fno-pie)
  target_link_options(quillstead_position INTERFACE
    -no-pie $<$<CXX_COMPILER_ID:Clang>:-Wno-unused-command-line-argument>)
  target_link_options(quillstead_static INTERFACE -static -Wl,--gc-sections)
endif()
if(QUILLSTEAD_MUSL_PLATFORM)
  set(layout ${PROJECT_SOURCE_DIR}/cmake/toolchains/musl.ld)
  target_link_options(quillstead_static INTERFACE -Wl,-T,${layout})
  set_target_properties(quillstead_static PROPERTIES INTERFACE_LINK_DEPENDS ${layout})
  target_sources(quillstead_static INTERFACE ${PROJECT_SOURCE_DIR}/src/support/NoDemangler.cpp)
  foreach(part malloc aligned_alloc malloc_usable_size)
    target_sources(quillstead_static INTERFACE ${QUILLSTEAD_MUSL_ALLOCATOR}/${part}.o)
  endforeach()
endif()
