# Runs one negative case of the macOS check (see cmake/MacosCheck.cmake).
#   COMPILER  clang++;  FLAGS  the check's flags joined with "|";  SOURCE  the case.
# The case names the diagnostic it expects in a line "// expect: <regex>". It must compile as
# written (so a rejection below is due to the fault, not to a broken stub or include), and must be
# rejected with that diagnostic when QM_NEGATIVE_FAULT is defined.
string(REPLACE "|" ";" flags "${FLAGS}")
file(STRINGS ${SOURCE} expect_lines REGEX "^// expect: ")
if(NOT expect_lines)
  message(FATAL_ERROR "${SOURCE}: no '// expect:' line")
endif()
list(GET expect_lines 0 expect)
string(REGEX REPLACE "^// expect: " "" expect "${expect}")

execute_process(COMMAND ${COMPILER} ${flags} ${SOURCE} RESULT_VARIABLE clean_rc ERROR_VARIABLE clean_err)
if(NOT clean_rc EQUAL 0)
  message(FATAL_ERROR "the fault-free version must compile, but did not:\n${clean_err}")
endif()

execute_process(COMMAND ${COMPILER} ${flags} -DQM_NEGATIVE_FAULT=1 ${SOURCE}
  RESULT_VARIABLE fault_rc ERROR_VARIABLE fault_err)
if(fault_rc EQUAL 0)
  message(FATAL_ERROR "the check accepted the fault in ${SOURCE}")
endif()
if(NOT fault_err MATCHES "${expect}")
  message(FATAL_ERROR "rejected, but not with the expected diagnostic '${expect}':\n${fault_err}")
endif()
message(STATUS "rejected as expected: ${expect}")
