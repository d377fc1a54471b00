# The darwin readers compiled for Linux against the stub SDK and linked with a scripted fake of
# the kernel calls (testing/fake_darwin_kernel.*), so their byte layouts, counts, buffer handling
# and skips are unit-tested without a Mac. Included from this folder's CMakeLists on Linux only.
if(NOT QM_BUILD_TESTS)
  return()
endif()

qm_add_tests(sampling_darwin_fake_tests
  SOURCES
    system_counters_darwin.cpp
    process_scan_darwin.cpp
    testing/fake_darwin_kernel.cpp
    testing/system_counters_darwin_test.cpp
    testing/process_scan_darwin_test.cpp
  LIBS qm_sampling)
# The stub headers must win over glibc's <ifaddrs.h>, <net/if.h> and <sys/mount.h>; the Darwin
# timeval is forced first for the reason given in cmake/MacosCheck.cmake; the fake-kernel switch
# renames the functions that glibc also defines with another shape.
target_include_directories(sampling_darwin_fake_tests SYSTEM BEFORE PRIVATE
  ${PROJECT_SOURCE_DIR}/tools/macos-sdk/include)
target_compile_definitions(sampling_darwin_fake_tests PRIVATE QM_STUB_SDK_FAKE_KERNEL=1)
target_compile_options(sampling_darwin_fake_tests PRIVATE -include sys/_types/_timeval.h)
