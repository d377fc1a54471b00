#pragma once

// A small CoreFoundation stand-in for the fake-kernel tests: strings, numbers, booleans, arrays
// and dictionaries with real reference counts, so a reader that leaks or over-releases an object
// the registry handed it fails its test. Single-threaded.

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace quillmark::fake_cf {

// Builders return +1 references; containers take over the references they are given.
CFTypeRef string(const std::string& text);
CFTypeRef integer(std::int64_t value);
CFTypeRef boolean(bool value);  // the shared kCFBooleanTrue/False
CFTypeRef array(std::initializer_list<CFTypeRef> items);
CFTypeRef dictionary(std::initializer_list<std::pair<CFTypeRef, CFTypeRef>> entries);
// A dictionary keyed by strings.
CFTypeRef object(std::initializer_list<std::pair<std::string, CFTypeRef>> entries);

// Objects created and not yet destroyed (the shared booleans are not counted).
int liveObjects();

}  // namespace quillmark::fake_cf
