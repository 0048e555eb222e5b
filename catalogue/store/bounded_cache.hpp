#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace tarn::evolution::catalogue {

/// Values by key, those asked for lately, up to a size in all of twice what it is made for. A
/// value that was not asked for while as much again came in is dropped.
template <class Value>
class BoundedCache {
 public:
  explicit BoundedCache(std::size_t size) : limit_(size) {}

  /// Null when there is none.
  std::shared_ptr<const Value> find(const std::u16string& key) {
    if (const auto found = young_.find(key); found != young_.end()) return found->second.value;
    const auto found = old_.find(key);
    if (found == old_.end()) return nullptr;
    const Entry entry = found->second;
    old_.erase(found);
    return add(key, entry);
  }

  std::shared_ptr<const Value> add(const std::u16string& key, Value value, std::size_t size) {
    return add(key, Entry{std::make_shared<const Value>(std::move(value)), size});
  }

 private:
  struct Entry {
    std::shared_ptr<const Value> value;
    std::size_t size;
  };

  std::shared_ptr<const Value> add(const std::u16string& key, const Entry& entry) {
    if (size_ + entry.size > limit_) {
      old_ = std::exchange(young_, {});
      size_ = 0;
    }
    size_ += entry.size;
    young_.insert_or_assign(key, entry);
    return entry.value;
  }

  std::size_t limit_;
  std::size_t size_ = 0;  // of the young
  std::unordered_map<std::u16string, Entry> young_;
  std::unordered_map<std::u16string, Entry> old_;
};

}  // namespace tarn::evolution::catalogue
