#include "base/defaults_store.h"

namespace quillmark {
namespace {

template <class T>
std::optional<T> typed(const DefaultsStore& store, std::string_view key) {
  auto value = store.get(key);
  if (!value) return std::nullopt;
  if (const T* typedValue = std::get_if<T>(&*value)) return *typedValue;
  return std::nullopt;
}

}  // namespace

std::optional<bool> DefaultsStore::getBool(std::string_view key) const { return typed<bool>(*this, key); }
std::optional<double> DefaultsStore::getDouble(std::string_view key) const {
  return typed<double>(*this, key);
}
std::optional<std::string> DefaultsStore::getString(std::string_view key) const {
  return typed<std::string>(*this, key);
}
std::optional<std::vector<std::string>> DefaultsStore::getStringArray(std::string_view key) const {
  return typed<std::vector<std::string>>(*this, key);
}

std::optional<DefaultsValue> MemoryDefaultsStore::get(std::string_view key) const {
  std::lock_guard lock(mutex_);
  auto it = values_.find(key);
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

void MemoryDefaultsStore::set(std::string_view key, DefaultsValue value) {
  std::lock_guard lock(mutex_);
  values_.insert_or_assign(std::string(key), std::move(value));
  ++writes_;
}

void MemoryDefaultsStore::remove(std::string_view key) {
  std::lock_guard lock(mutex_);
  if (auto it = values_.find(key); it != values_.end()) values_.erase(it);
  ++writes_;
}

int MemoryDefaultsStore::writeCount() const {
  std::lock_guard lock(mutex_);
  return writes_;
}

}  // namespace quillmark
