#pragma once

#include "catalogue/browsable_repository.hpp"

namespace tarn::evolution::catalogue {

/// A repository with linked metamodels of its own over the content of another one, which must
/// outlive it. It offers all of that; whoever derives from it says what is left out. It knows no
/// requirements by itself.
class ContentView : public pathfinder::VersionRepository {
 public:
  explicit ContentView(BrowsableRepository& content) : content_(content) {}

  std::optional<pathfinder::SemVer> getEquivalentSemVer(const std::u16string& metamodelName,
                                                        const std::u16string& versionText) override;
  std::optional<pathfinder::Metamodel> getMetamodel(const std::u16string& name,
                                                    const pathfinder::VersionId& version) override;
  void findMetamodels(const std::u16string& name, const pathfinder::VersionRange& range,
                      std::vector<pathfinder::Metamodel>& result) override;
  void findHops(const std::u16string& name, const pathfinder::VersionId& from,
                std::vector<pathfinder::Hop>& result) override;

 protected:
  BrowsableRepository& content() const { return content_; }

 private:
  BrowsableRepository& content_;
};

}  // namespace tarn::evolution::catalogue
