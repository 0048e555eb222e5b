#include "arguments.hpp"

#include <algorithm>
#include <chrono>

#include "catalogue/conditions/condition_texts.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue::python {

using pathfinder::Hop;
using pathfinder::PeerRequirement;
using pathfinder::SearchLimits;
using pathfinder::SearchProgress;
using pathfinder::VersionRange;

namespace {

/// What `read` makes of something; what it throws names the place, which is asked for then.
template <class Place, class Read>
auto readAt(const Place& place, const Read& read) {
  try {
    return read();
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(place() + ": " + error.what());
  }
}

VersionRange readRange(const RangeTuple& tuple) {
  const auto& [lower, upper] = tuple;
  return upper ? parseRange(lower, *upper) : VersionRange::singleVersion(parseVersion(lower));
}

VersionRange readRanges(const std::vector<RangeTuple>& tuples) {
  std::vector<VersionRange> ranges;
  ranges.reserve(tuples.size());
  for (const RangeTuple& tuple : tuples) ranges.push_back(readRange(tuple));
  return unionOf(ranges);
}

PeerRequirement readRequirement(const DependencyTuple& tuple) {
  const auto& [name, ranges, isOptional] = tuple;
  return {parseName(name), readRanges(ranges), isOptional};
}

CatalogueMetamodel readMetamodel(const MetamodelTuple& tuple) {
  const auto& [name, version, semver, dependencies] = tuple;
  CatalogueMetamodel result{.descriptor = {parseName(name), parseVersion(version), {}},
                            .equivalent = std::nullopt};
  for (const DependencyTuple& dependency : dependencies) {
    auto needed = readRequirement(dependency);
    if (needed.isOptional) {
      result.requirements.push_back({std::move(needed)});
    } else {
      result.descriptor.dependencies.emplace_back(std::move(needed.name), std::move(needed.range));
    }
  }
  if (!semver) return result;
  if (result.descriptor.version.isSemVer()) {
    throw std::invalid_argument("the version " + version + " has no need of a semver");
  }
  result.equivalent = parseSemVer(*semver);
  return result;
}

Hop readHop(const HopTuple& tuple) {
  const auto& [name, source, target, expensive] = tuple;
  return {parseName(name), parseVersion(source), parseVersion(target), expensive};
}

template <class Item, class Read>
auto readAll(const std::vector<Item>& items, const char* list, const Read& read) {
  std::vector<decltype(read(items.front()))> result;
  result.reserve(items.size());
  const auto place = [&] { return list + ("[" + std::to_string(result.size()) + "]"); };
  for (const Item& item : items) {
    result.push_back(readAt(place, [&] { return read(item); }));
  }
  return result;
}

std::string shown(const py::handle& value) {
  return py::repr(value).cast<std::string>();
}

/// The text as UTF-8; `place` is asked for where it is none.
template <class Place>
std::string readTextAt(const Place& place, const py::handle& value) {
  if (!PyUnicode_Check(value.ptr())) {
    throw py::type_error(place() + " must be a str, not " + Py_TYPE(value.ptr())->tp_name);
  }
  Py_ssize_t size = 0;
  const char* const text = PyUnicode_AsUTF8AndSize(value.ptr(), &size);
  if (text != nullptr) return {text, static_cast<std::size_t>(size)};
  PyErr_Clear();
  throw std::invalid_argument(place() + " is no Unicode text: " + shown(value));
}

}  // namespace

std::vector<CatalogueMetamodel> readMetamodels(const std::vector<MetamodelTuple>& tuples,
                                               const char* list) {
  return readAll(tuples, list, readMetamodel);
}

std::vector<Hop> readHops(const std::vector<HopTuple>& tuples, const char* list) {
  return readAll(tuples, list, readHop);
}

std::vector<PeerRequirement> readRequirements(const std::vector<DependencyTuple>& tuples,
                                              const char* list) {
  return readAll(tuples, list, readRequirement);
}

std::vector<std::u16string> readNames(const std::vector<std::string>& names, const char* list) {
  return readAll(names, list, parseName);
}

std::string readText(const py::handle& value, const char* argument) {
  return readTextAt([&] { return std::string(argument); }, value);
}

Selection readSelection(const py::dict& selection, const char* argument) {
  const auto aName = [&] { return "a name of " + std::string(argument); };
  Selection result;
  for (const auto& [key, value] : selection) {
    const auto place = [&, &key = key] { return std::string(argument) + "[" + shown(key) + "]"; };
    const std::string name = readTextAt(aName, key);
    const std::string version = readTextAt(place, value);
    readAt(place, [&] { return result.emplace(parseName(name), parseVersion(version)); });
  }
  return result;
}

PathConditions ConditionOptions::read(BrowsableRepository& repository) const {
  PathConditions conditions;
  const auto readEach = [&](const auto& entries, const char* argument, const auto& add) {
    for (const auto& [name, what] : entries) {
      const auto place = [&, &name = name] { return argument + ("[\"" + name + "\"]"); };
      readAt(place, [&, &name = name, &what = what] {
        add(repository, parseName(name), what, conditions);
      });
    }
  };
  readEach(avoided, "avoid", addAvoided);
  readEach(pinned, "pin", addPinned);
  return conditions;
}

SearchLimits LimitOptions::read() const {
  SearchLimits limits;
  if (timeout) {
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;
    const auto now = Clock::now();
    if (*timeout < Seconds(Clock::time_point::max() - now).count() / 2) {
      limits.deadline =
          now + std::chrono::duration_cast<Clock::duration>(Seconds(std::max(*timeout, 0.0)));
    }
  }
  if (memory) limits.memory = *memory;
  if (!progress.is_none()) {
    limits.progress = [this](const SearchProgress& now) {
      const py::gil_scoped_acquire held;
      progress(static_cast<int>(now.stage), now.leastProven, now.leastFound);
    };
  }
  return limits;
}

}  // namespace tarn::evolution::catalogue::python
