# The macOS check: on Linux, every darwin source under src/ is compiled by clang against our stub
# SDK (tools/macos-sdk), as the Mac build would see it, so a misspelt selector, a wrong argument
# type or a struct used with the wrong layout fails here instead of on the first Mac that builds
# it. Each file is one ctest test (so plain `ctest` in any Linux build runs the check), and the
# target `macos_check` runs them all as a build step.
#
# Exposed names:
#   target  macos_check                  compile every darwin file (syntax only)
#   tests   macos_check:<path under src> one per darwin file
#   tests   macos_check_negative:<case>  cases the check must reject
#   cache   QM_MACOS_CHECK (ON)          switch the check off
#   cache   QM_MACOS_CHECK_CLANG         the clang++ used (any clang >= 14)
if(APPLE)
  return()
endif()

option(QM_MACOS_CHECK "Type-check the darwin sources against the stub SDK" ON)
if(NOT QM_MACOS_CHECK)
  return()
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(_qm_default_clang ${CMAKE_CXX_COMPILER})
else()
  find_program(_qm_default_clang NAMES clang++ clang++-14 clang++-15 clang++-16)
endif()
set(QM_MACOS_CHECK_CLANG "${_qm_default_clang}" CACHE FILEPATH "clang++ used for the macOS check")
if(NOT QM_MACOS_CHECK_CLANG)
  message(WARNING "No clang++ found: the macOS check is not available in this build")
  return()
endif()

set(QM_MACOS_SDK_DIR ${PROJECT_SOURCE_DIR}/tools/macos-sdk/include)

# What the Mac compiler predefines for arm64 macOS. __aarch64__ is left out on purpose: it would
# make glibc's x86-64 headers pick a 32-bit configuration; nothing of ours tests it.
# The Darwin timeval is force-included because libstdc++ pulls in glibc's (with a 64-bit
# tv_usec) before any of our includes could; the stub header claims glibc's guard.
# -fblocks: Apple clang enables blocks in every language mode.
set(QM_MACOS_CHECK_FLAGS
  -std=c++20 -fsyntax-only -fblocks
  -D__APPLE__=1 -D__MACH__=1 -D__arm64__=1
  -include sys/_types/_timeval.h
  -isystem ${QM_MACOS_SDK_DIR}
  -I${PROJECT_SOURCE_DIR}/src
  ${QM_WARNINGS})
set(QM_MACOS_CHECK_CXX_FLAGS -x c++)
set(QM_MACOS_CHECK_OBJCXX_FLAGS -x objective-c++ -fobjc-runtime=macosx-13.0 -fobjc-arc)

file(GLOB_RECURSE _qm_darwin_sources CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/src/*_darwin.cpp
  ${PROJECT_SOURCE_DIR}/src/*_darwin.mm)
list(SORT _qm_darwin_sources)

function(_qm_macos_check_language_flags file out)
  if(file MATCHES "\\.mm$")
    set(${out} ${QM_MACOS_CHECK_OBJCXX_FLAGS} PARENT_SCOPE)
  else()
    set(${out} ${QM_MACOS_CHECK_CXX_FLAGS} PARENT_SCOPE)
  endif()
endfunction()

set(_qm_stamps)
foreach(_qm_file IN LISTS _qm_darwin_sources)
  file(RELATIVE_PATH _qm_rel ${PROJECT_SOURCE_DIR}/src ${_qm_file})
  _qm_macos_check_language_flags(${_qm_file} _qm_lang)
  set(_qm_command ${QM_MACOS_CHECK_CLANG} ${QM_MACOS_CHECK_FLAGS} ${_qm_lang} ${_qm_file})
  if(QM_BUILD_TESTS)
    add_test(NAME macos_check:${_qm_rel} COMMAND ${_qm_command})
    set_tests_properties(macos_check:${_qm_rel} PROPERTIES LABELS macos_check TIMEOUT 120)
  endif()
  string(MAKE_C_IDENTIFIER ${_qm_rel} _qm_id)
  set(_qm_stamp ${CMAKE_BINARY_DIR}/macos_check/${_qm_id}.stamp)
  add_custom_command(OUTPUT ${_qm_stamp}
    COMMAND ${_qm_command}
    COMMAND ${CMAKE_COMMAND} -E touch ${_qm_stamp}
    DEPENDS ${_qm_file}
    IMPLICIT_DEPENDS CXX ${_qm_file}
    COMMENT "macOS check: ${_qm_rel}"
    VERBATIM)
  list(APPEND _qm_stamps ${_qm_stamp})
endforeach()
add_custom_target(macos_check DEPENDS ${_qm_stamps})

# Proof that the check can fail: each negative case compiles cleanly as written and must be
# rejected, with the expected diagnostic, once QM_NEGATIVE_FAULT switches its fault on.
if(QM_BUILD_TESTS)
  file(GLOB _qm_negative_cases CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/tools/macos-sdk/negative/*.cpp
    ${PROJECT_SOURCE_DIR}/tools/macos-sdk/negative/*.mm)
  foreach(_qm_case IN LISTS _qm_negative_cases)
    get_filename_component(_qm_name ${_qm_case} NAME)
    _qm_macos_check_language_flags(${_qm_case} _qm_lang)
    set(_qm_flags ${QM_MACOS_CHECK_FLAGS} ${_qm_lang})
    string(REPLACE ";" "|" _qm_flags "${_qm_flags}")
    add_test(NAME macos_check_negative:${_qm_name}
      COMMAND ${CMAKE_COMMAND}
        -DCOMPILER=${QM_MACOS_CHECK_CLANG} -DFLAGS=${_qm_flags} -DSOURCE=${_qm_case}
        -P ${PROJECT_SOURCE_DIR}/tools/macos-sdk/negative/run_negative.cmake)
    set_tests_properties(macos_check_negative:${_qm_name} PROPERTIES LABELS macos_check TIMEOUT 120)
  endforeach()
endif()
