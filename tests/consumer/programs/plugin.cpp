#include "plugin.hpp"

#include "messages/report_exception.hpp"

using namespace tarn::evolution::pathfinder;

namespace {

class PluginRepository final : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (const SemVer& version : {SemVer{1, 0, 0}, SemVer{2, 0, 0}}) {
      const Metamodel metamodel(name, version, {});
      if (includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    if (name == u"broken") throw PluginError("broken");
    if (from == SemVer{1, 0, 0}) result.emplace_back(name, from, SemVer{2, 0, 0}, false);
  }
};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) MakeRepository makeRepository;
__attribute__((visibility("default"))) CatchesByType catchesByType;

VersionRepository* makeRepository() {
  return new PluginRepository;
}

bool catchesByType(VersionRepository& repository) {
  using Expected = foundation::core::except::Exception<tarn_evo::messages::InvalidFamilyVersion>;
  try {
    repository.combine({{u"shape", SemVer{9, 0, 0}}});
  } catch (const Expected&) {
    return true;
  } catch (...) {
  }
  return false;
}
}
