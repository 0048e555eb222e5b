#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace tarn::evolution::catalogue {

/// Values by key, those asked for lately, up to a size in all of twice what it is made for. The
/// size of a value is what its `size()` says, and one. A value that was not asked for while as much
/// again came in is dropped.
template <class Value>
class BoundedCache {
 public:
  explicit BoundedCache(std::size_t size) : limit_(size) {}

  /// What is kept for the key, or else what `read` finds, which is kept.
  template <class Read>
  std::shared_ptr<const Value> get(const std::u16string& key, const Read& read) {
    if (auto kept = find(key)) return kept;
    return add(key, std::make_shared<const Value>(read()));
  }

 private:
  using Entry = std::shared_ptr<const Value>;

  Entry find(const std::u16string& key) {
    if (const auto found = young_.find(key); found != young_.end()) return found->second;
    const auto found = old_.find(key);
    if (found == old_.end()) return nullptr;
    const Entry entry = found->second;
    old_.erase(found);
    return add(key, entry);
  }

  Entry add(const std::u16string& key, const Entry& entry) {
    const std::size_t size = 1 + entry->size();
    if (size_ + size > limit_) {
      old_ = std::exchange(young_, {});
      size_ = 0;
    }
    size_ += size;
    young_.insert_or_assign(key, entry);
    return entry;
  }

  std::size_t limit_;
  std::size_t size_ = 0;  // of the young
  std::unordered_map<std::u16string, Entry> young_;
  std::unordered_map<std::u16string, Entry> old_;
};

}  // namespace tarn::evolution::catalogue
