#include <iostream>
#include <stdexcept>

#include "messages/report_exception.hpp"
#include "pathfinder/version.hpp"
#include "pathfinder/version_repository.hpp"

#if TARN_EVOLUTION_PATHFINDER_VERSION < 1000
#error "The version of the headers is no number to compare."
#endif

using namespace tarn::evolution::pathfinder;
using foundation::core::except::Exception;
using foundation::core::except::IMsgIDException;

namespace {

/// One metamodel with three versions in a row; the last needs something that nobody has.
class ThreeVersions : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    if (name != u"shape") return;
    for (const Metamodel& shape : shapes_) {
      if (includes(range, shape)) result.push_back(shape);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    if (from == SemVer{1, 0, 0}) result.emplace_back(name, from, SemVer{1, 1, 0}, false);
  }

 private:
  const std::vector<Metamodel> shapes_{
      {u"shape", SemVer{1, 0, 0}, {}},
      {u"shape", SemVer{1, 1, 0}, {}},
      {u"shape", SemVer{2, 0, 0}, {{u"missing", SemVerRange{{1, 0, 0}, {2, 0, 0}}}}},
  };
};

void expect(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

void findsPath(VersionRepository& repository) {
  const auto path =
      repository.findPath({{u"shape", SemVer{1, 0, 0}}}, {{u"shape", SemVer{1, 1, 0}}});
  expect(path && path->size() == 1, "a path of one step is found");
  expect(dumpLockstepHop(path->front().hops) == "Lockstep {Hop {shape@1.0.0->1.1.0}}",
         "the step prints as it always did");
}

template <class Caught>
void failsAs(VersionRepository& repository, const SemVer& version) {
  try {
    repository.combine({{u"shape", version}});
  } catch (const Caught&) {
    return;
  }
  expect(false, "the question fails");
}

void errorArrives(VersionRepository& repository) {
  using namespace tarn_evo::messages;
  failsAs<Exception<ConflictingDependencies>>(repository, {2, 0, 0});
  failsAs<Exception<InvalidFamilyVersion>>(repository, {9, 0, 0});
  failsAs<IMsgIDException>(repository, {9, 0, 0});
  failsAs<std::exception>(repository, {9, 0, 0});
  try {
    repository.combine({{u"shape", SemVer{9, 0, 0}}});
  } catch (const IMsgIDException& error) {
    expect(error.GetBaseMsgIDObj().args.size() == 2, "the message has its arguments");
#ifdef FOREIGN_PLATFORM
    expect(error.GetBaseMsgIDObj().origin == foreign::origin, "the host's message class is used");
#endif
  }
}

}  // namespace

int main() try {
  expect(libraryVersion() == headerVersion, "the library is of the version of its headers");
  ThreeVersions repository;
  findsPath(repository);
  errorArrives(repository);
  std::cout << "A repository of its own is asked, and fails by type.\n";
  return 0;
} catch (const std::exception& error) {
  std::cerr << "Not so: " << error.what() << "\n";
  return 1;
}
