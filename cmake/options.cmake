# Compiler options that every target shares.
add_library(dravel_options INTERFACE)
if(MSVC)
  target_compile_options(dravel_options INTERFACE /W4 /utf-8 /permissive-)
else()
  target_compile_options(dravel_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror=return-type)
  # The optimiser's warnings about std::string are false with -O3 and this compiler; the builds without it keep them.
  set(false_alarms -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow)
  target_compile_options(dravel_options INTERFACE
    "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:${false_alarms}>")
endif()
if(WIN32)
  target_compile_definitions(dravel_options INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00
                             WINVER=0x0A00)
endif()
define_property(TARGET PROPERTY DRAVEL_UNOPTIMISED)
if(DRAVEL_SANITIZE)
  # Not the tests' own code: half of the compiler's time went there.
  set(checked_level "$<IF:$<BOOL:$<TARGET_PROPERTY:DRAVEL_UNOPTIMISED>>,-O0,-O1>")
  target_compile_options(dravel_options INTERFACE -fsanitize=${DRAVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer ${checked_level} -g1)
  target_link_options(dravel_options INTERFACE -fsanitize=${DRAVEL_SANITIZE})
endif()
if(DRAVEL_FUZZ)
  target_compile_options(dravel_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(DRAVEL_CHECKED)
  target_compile_definitions(dravel_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_compile_options(dravel_options INTERFACE -O1 -g1 -fstack-protector-strong -fsanitize=undefined
                         -fsanitize-undefined-trap-on-error)
  target_link_options(dravel_options INTERFACE -fstack-protector-strong)
endif()
find_program(DRAVEL_CCACHE ccache)
if(DRAVEL_CCACHE)
  # The tests' precompiled header is cached, too.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${DRAVEL_CCACHE})
endif()
