# Interface target `quillstead_hardening`: what makes a mistake in memory end the program instead of
# being of use to somebody. Every target shares it through quillstead_support, so that inline code is
# the same everywhere. Sanitizers find more, and debug builds are not optimised, which fortifying needs.
add_library(quillstead_hardening INTERFACE)
if(NOT QUILLSTEAD_SANITIZE)
  set(optimised $<NOT:$<CONFIG:Debug>>)
  target_compile_options(quillstead_hardening INTERFACE
    -fstack-protector-strong $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>)
  if(NOT APPLE)
    target_compile_options(quillstead_hardening INTERFACE -fstack-clash-protection)
    target_compile_definitions(quillstead_hardening INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(quillstead_hardening INTERFACE
      LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  endif()
endif()
