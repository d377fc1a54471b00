#include "sensors/testing/fake_core_foundation.h"

#include <cstring>
#include <vector>

namespace quillmark::fake_cf {
namespace {

enum class Kind : CFTypeID { string = 7, number = 22, boolean = 21, array = 19, dictionary = 18 };

struct Object {
  Kind kind = Kind::string;
  int references = 1;
  std::string text;
  std::int64_t value = 0;
  std::vector<CFTypeRef> items;
  std::vector<std::pair<CFTypeRef, CFTypeRef>> entries;
};

int& live() {
  static int count = 0;
  return count;
}

Object* make(Kind kind) {
  ++live();
  auto* object = new Object{};
  object->kind = kind;
  return object;
}

const Object* as(CFTypeRef ref) { return static_cast<const Object*>(ref); }

Object sharedBoolean(bool value) {
  Object object;
  object.kind = Kind::boolean;
  object.value = value ? 1 : 0;
  return object;
}
Object trueObject = sharedBoolean(true);
Object falseObject = sharedBoolean(false);

bool shared(const Object* object) { return object == &trueObject || object == &falseObject; }

bool sameKey(CFTypeRef a, CFTypeRef b) {
  const Object* x = as(a);
  const Object* y = as(b);
  if (x->kind != y->kind) return false;
  return x->kind == Kind::string ? x->text == y->text : x->value == y->value;
}

}  // namespace

CFTypeRef string(const std::string& text) {
  Object* object = make(Kind::string);
  object->text = text;
  return object;
}

CFTypeRef integer(std::int64_t value) {
  Object* object = make(Kind::number);
  object->value = value;
  return object;
}

CFTypeRef boolean(bool value) { return value ? &trueObject : &falseObject; }

CFTypeRef array(std::initializer_list<CFTypeRef> items) {
  Object* object = make(Kind::array);
  object->items.assign(items.begin(), items.end());
  return object;
}

CFTypeRef dictionary(std::initializer_list<std::pair<CFTypeRef, CFTypeRef>> entries) {
  Object* object = make(Kind::dictionary);
  object->entries.assign(entries.begin(), entries.end());
  return object;
}

CFTypeRef object(std::initializer_list<std::pair<std::string, CFTypeRef>> entries) {
  Object* object = make(Kind::dictionary);
  for (const auto& [key, value] : entries) object->entries.emplace_back(string(key), value);
  return object;
}

int liveObjects() { return live(); }

}  // namespace quillmark::fake_cf

using quillmark::fake_cf::Kind;
using quillmark::fake_cf::Object;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = reinterpret_cast<CFBooleanRef>(&quillmark::fake_cf::trueObject);
const CFBooleanRef kCFBooleanFalse = reinterpret_cast<CFBooleanRef>(&quillmark::fake_cf::falseObject);

CFTypeID CFGetTypeID(CFTypeRef cf) { return static_cast<CFTypeID>(quillmark::fake_cf::as(cf)->kind); }
CFTypeID CFStringGetTypeID(void) { return static_cast<CFTypeID>(Kind::string); }
CFTypeID CFNumberGetTypeID(void) { return static_cast<CFTypeID>(Kind::number); }
CFTypeID CFBooleanGetTypeID(void) { return static_cast<CFTypeID>(Kind::boolean); }
CFTypeID CFArrayGetTypeID(void) { return static_cast<CFTypeID>(Kind::array); }
CFTypeID CFDictionaryGetTypeID(void) { return static_cast<CFTypeID>(Kind::dictionary); }

CFTypeRef CFRetain(CFTypeRef cf) {
  auto* object = const_cast<Object*>(quillmark::fake_cf::as(cf));
  if (!quillmark::fake_cf::shared(object)) ++object->references;
  return cf;
}

void CFRelease(CFTypeRef cf) {
  auto* object = const_cast<Object*>(quillmark::fake_cf::as(cf));
  if (quillmark::fake_cf::shared(object)) return;
  if (object->references <= 0) std::abort();  // over-released: the real CF would crash too
  if (--object->references > 0) return;
  for (CFTypeRef item : object->items) CFRelease(item);
  for (const auto& [key, value] : object->entries) {
    CFRelease(key);
    CFRelease(value);
  }
  --quillmark::fake_cf::live();
  delete object;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex numBytes, CFStringEncoding,
                                    Boolean) {
  return static_cast<CFStringRef>(quillmark::fake_cf::string(
      std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(numBytes))));
}

const char* CFStringGetCStringPtr(CFStringRef s, CFStringEncoding) {
  return quillmark::fake_cf::as(s)->text.c_str();
}

Boolean CFStringGetCString(CFStringRef s, char* buffer, CFIndex size, CFStringEncoding) {
  const std::string& text = quillmark::fake_cf::as(s)->text;
  if (static_cast<CFIndex>(text.size()) >= size) return false;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

CFIndex CFStringGetLength(CFStringRef s) {
  return static_cast<CFIndex>(quillmark::fake_cf::as(s)->text.size());
}
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding) { return length * 4; }

Boolean CFBooleanGetValue(CFBooleanRef b) { return quillmark::fake_cf::as(b)->value != 0; }

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* out) {
  const std::int64_t value = quillmark::fake_cf::as(number)->value;
  if (type == kCFNumberSInt64Type) {
    std::memcpy(out, &value, sizeof value);
  } else {
    const double real = static_cast<double>(value);
    std::memcpy(out, &real, sizeof real);
  }
  return true;
}

CFIndex CFArrayGetCount(CFArrayRef a) {
  return static_cast<CFIndex>(quillmark::fake_cf::as(a)->items.size());
}
const void* CFArrayGetValueAtIndex(CFArrayRef a, CFIndex i) {
  return quillmark::fake_cf::as(a)->items.at(static_cast<std::size_t>(i));
}

CFIndex CFDictionaryGetCount(CFDictionaryRef d) {
  return static_cast<CFIndex>(quillmark::fake_cf::as(d)->entries.size());
}

const void* CFDictionaryGetValue(CFDictionaryRef d, const void* key) {
  for (const auto& [k, v] : quillmark::fake_cf::as(d)->entries) {
    if (quillmark::fake_cf::sameKey(k, key)) return v;
  }
  return nullptr;
}

void CFDictionaryApplyFunction(CFDictionaryRef d, CFDictionaryApplierFunction applier, void* context) {
  for (const auto& [k, v] : quillmark::fake_cf::as(d)->entries) applier(k, v, context);
}

}  // extern "C"
