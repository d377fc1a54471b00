#pragma once

#include <string>

namespace quillmark::testing {

// A fresh, empty folder under the test run's temporary root. The whole root is made once per
// test process, and the log, config and state folders point into it, so no test touches the
// user's real files.
std::string makeTempDirectory();
// Writes contents to path, creating folders; fails the test on error.
void writeTestFile(const std::string& path, const std::string& contents);

}  // namespace quillmark::testing
