# Interface target `quillstead_hardening`: what makes a mistake in memory end the program instead of
# being of use to somebody. Every target shares it through quillstead_support, so that inline code is
# the same everywhere. Sanitizers find more, and debug builds are not optimised, which fortifying needs.
add_library(quillstead_hardening INTERFACE)
if(NOT QUILLSTEAD_SANITIZE)
  set(optimised $<NOT:$<CONFIG:Debug>>)
  target_compile_options(quillstead_hardening INTERFACE
    -fstack-protector-strong $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>)
  if(NOT APPLE)
    if(NOT QUILLSTEAD_MUSL_PLATFORM STREQUAL "linux-arm64")  # where that compiler has no probes
      target_compile_options(quillstead_hardening INTERFACE -fstack-clash-protection)
    endif()
    target_compile_definitions(quillstead_hardening INTERFACE _GLIBCXX_ASSERTIONS
      $<$<BOOL:${QUILLSTEAD_MUSL_PLATFORM}>:_LIBCPP_ENABLE_ASSERTIONS=1>)
    target_link_options(quillstead_hardening INTERFACE
      LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
  endif()
endif()
