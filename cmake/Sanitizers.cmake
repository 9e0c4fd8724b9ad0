# Interface target `quillstead_sanitizers`: address and undefined behaviour, when asked for.
option(QUILLSTEAD_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)

add_library(quillstead_sanitizers INTERFACE)
if(QUILLSTEAD_SANITIZE)
  set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(quillstead_sanitizers INTERFACE ${flags})
  target_link_options(quillstead_sanitizers INTERFACE ${flags})
endif()
