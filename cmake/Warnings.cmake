# Every target of ours compiles warning-free with gcc 12 and clang 14.
set(QM_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)

# Applied per target so that third-party code (GoogleTest macros aside) never inherits -Werror.
function(qm_target_defaults target)
  target_compile_options(${target} PRIVATE ${QM_WARNINGS})
  target_compile_definitions(${target} PRIVATE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endfunction()

# One GoogleTest executable per source folder, tests beside the code they test. Every one runs in
# a private temporary home with an English environment (src/base/testing/test_main.cpp).
function(qm_add_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/src/base/testing/test_main.cpp)
  qm_target_defaults(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock GTest::gtest)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()
