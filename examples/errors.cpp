// What the path finder throws, each with its text.
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "messages/report_exception.hpp"
#include "pathfinder/version_repository.hpp"
#include "platform/text.hpp"

using namespace tarn::evolution::pathfinder;
using foundation::core::except::Exception;
using foundation::core::except::IMsgIDException;
using tarn_evo::messages::ConflictingDependencies;
using tarn_evo::messages::InvalidFamilyVersion;

namespace {

/// A catalogue with several faults.
class Faulty : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (const Metamodel& metamodel : metamodels_) {
      if (metamodel.name == name && includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    if (name == u"remote") throw std::runtime_error("the server for remote does not answer");
    if (from == SemVer{1, 0, 0}) result.emplace_back(name, from, SemVer{1, 1, 0}, false);
  }

 private:
  const VersionRange any_{SemVerRange{{0, 0, 0}, {9, 0, 0}}};
  const std::vector<Metamodel> metamodels_{
      {u"shape", SemVer{1, 0, 0}, {}},
      {u"shape", SemVer{1, 1, 0}, {}},
      {u"drawing", SemVer{1, 0, 0}, {{u"brush", any_}}},
      {u"paint", SemVer{1, 0, 0}, {{u"colour", any_}}},
      {u"colour", SemVer{1, 0, 0}, {{u"paint", any_}}},
      {u"remote", SemVer{1, 0, 0}, {}},
      {u"remote", SemVer{2, 0, 0}, {}},
  };
};

void report(const std::function<void()>& ask) {
  try {
    ask();
  } catch (const Exception<InvalidFamilyVersion>& error) {
    const auto& name = std::get<std::u16string>(error.GetBaseMsgIDObj().args.at(1));
    std::cout << "unknown version of " << fl::i18n::ustring_to_utf8(name) << ": " << error.what()
              << "\n";
  } catch (const Exception<ConflictingDependencies>& error) {
    std::cout << "cannot be linked: " << error.what() << "\n";
  } catch (const IMsgIDException& error) {
    std::cout << error.GetID() << ": " << error.what() << "\n";
  } catch (const std::exception& error) {
    std::cout << "another error: " << error.what() << "\n";
  }
}

}  // namespace

int main() {
  Faulty repository;
  report([&] { repository.combine({{u"shape", SemVer{7, 0, 0}}}); });
  report([&] { repository.combine({{u"drawing", SemVer{1, 0, 0}}}); });
  report([&] { repository.combine({{u"paint", SemVer{1, 0, 0}}}); });
  report([&] {
    repository.findPath({{u"remote", SemVer{1, 0, 0}}}, {{u"remote", SemVer{2, 0, 0}}});
  });
  report([] { VersionId(u"preview").getSemVer(); });
}
