#include "catalogue/c/arguments.hpp"

#include <chrono>
#include <cstddef>
#include <cstring>
#include <limits>

#include "catalogue/c/boundary.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue::c {

using pathfinder::SearchLimits;
using pathfinder::SearchProgress;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

using Clock = std::chrono::steady_clock;

/// The first members of a structure that a caller of a former version knows as all.
constexpr std::size_t firstLimits = offsetof(tarn_evolution_limits, on_better_path);
constexpr std::size_t firstCallbacks = offsetof(tarn_evolution_callbacks, find_requirements);

/// A structure that begins with its size as the caller knows it, over what it lacks.
template <class Structure>
Structure readSized(const Structure& given, Structure result, std::size_t least,
                    const char* argument) {
  if (given.size < least) {
    throw std::invalid_argument(std::string(argument) + ".size: is " + std::to_string(given.size) +
                                ", which is less than " + std::to_string(least));
  }
  std::memcpy(&result, &given, std::min(given.size, sizeof(Structure)));
  return result;
}

tarn_evolution_limits knownOf(const tarn_evolution_limits& given) {
  return readSized(given, tarn_evolution_limits(TARN_EVOLUTION_NO_LIMITS), firstLimits, "limits");
}

/// A time so far ahead that it cannot be told counts as none.
std::optional<Clock::time_point> deadlineOf(std::int64_t milliseconds) {
  const Clock::time_point now = Clock::now();
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::time_point::max() - now);
  if (milliseconds < 0 || milliseconds >= left.count()) return std::nullopt;
  return now + std::chrono::milliseconds(milliseconds);
}

tarn_evolution_progress toC(const SearchProgress& progress) {
  return {.size = sizeof(tarn_evolution_progress),
          .stage = static_cast<int32_t>(progress.stage),
          .is_found = progress.leastFound.has_value(),
          .least_found = progress.leastFound.value_or(0),
          .least_proven = progress.leastProven};
}

VersionRange readRange(const tarn_evolution_range& range, const std::string& argument) {
  if (range.upper == nullptr) {
    return VersionRange::singleVersion(readVersion(range.lower, argument + ".lower"));
  }
  return parsed(range.lower, argument,
                [&](const std::string& lower) { return parseRange(lower, range.upper); });
}

}  // namespace

std::u16string readName(const char* text, const std::string& argument) {
  return parsed(text, argument, parseName);
}

VersionId readVersion(const char* text, const std::string& argument) {
  return parsed(text, argument, parseVersion);
}

VersionRange readRanges(const tarn_evolution_range* ranges, size_t count,
                        const std::string& argument) {
  if (count == 0) throw std::invalid_argument(argument + ": there is none");
  required(ranges, argument.c_str());
  std::vector<VersionRange> result;
  for (size_t i = 0; i < count; ++i) {
    result.push_back(readRange(ranges[i], argument + "[" + std::to_string(i) + "]"));
  }
  return unionOf(result);
}

Selection readSelection(const tarn_evolution_named_version* items, size_t count,
                        const std::string& argument) {
  if (count > 0) required(items, argument.c_str());
  Selection result;
  for (size_t i = 0; i < count; ++i) {
    const std::string place = argument + "[" + std::to_string(i) + "]";
    const auto name = readName(items[i].name, place + ".name");
    if (!result.emplace(name, readVersion(items[i].version, place + ".version")).second) {
      throw std::invalid_argument(place + ".name: \"" + items[i].name + "\" stands twice");
    }
  }
  return result;
}

SearchLimits readLimits(const tarn_evolution_limits* given) {
  SearchLimits result;
  if (given == nullptr) return result;
  const tarn_evolution_limits limits = knownOf(*given);
  result.deadline = deadlineOf(limits.timeout_ms);
  if (limits.memory > 0) {
    result.memory = std::min<std::uint64_t>(limits.memory, std::numeric_limits<std::size_t>::max());
  }
  if (limits.stop != nullptr) result.stop = limits.stop->source.get_token();
  if (limits.on_progress != nullptr) {
    result.progress = [call = limits.on_progress, data = limits.data](const SearchProgress& now) {
      const tarn_evolution_progress progress = toC(now);
      if (call(data, &progress) != 0) throw StoppedByProgress();
    };
  }
  return result;
}

std::function<void(const tarn_evolution_steps&)> readBetterPath(
    const tarn_evolution_limits* given) {
  if (given == nullptr) return {};
  const tarn_evolution_limits limits = knownOf(*given);
  if (limits.on_better_path == nullptr) return {};
  return [call = limits.on_better_path, data = limits.data](const tarn_evolution_steps& path) {
    if (call(data, &path) != 0) throw StoppedByProgress();
  };
}

tarn_evolution_callbacks readCallbacks(const tarn_evolution_callbacks* given) {
  const tarn_evolution_callbacks callbacks = readSized(
      required(given, "callbacks"), tarn_evolution_callbacks(), firstCallbacks, "callbacks");
  if (callbacks.find_metamodels == nullptr) {
    throw std::invalid_argument("callbacks.find_metamodels: is NULL");
  }
  if (callbacks.find_hops == nullptr) throw std::invalid_argument("callbacks.find_hops: is NULL");
  return callbacks;
}

}  // namespace tarn::evolution::catalogue::c

tarn_evolution_stop* tarn_evolution_stop_new(void) {
  try {
    return new tarn_evolution_stop();
  } catch (...) {
    return nullptr;
  }
}

void tarn_evolution_stop_request(tarn_evolution_stop* stop) {
  if (stop != nullptr) stop->source.request_stop();
}

void tarn_evolution_stop_free(tarn_evolution_stop* stop) {
  delete stop;
}
