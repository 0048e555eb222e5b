#include <dlfcn.h>

#include <functional>
#include <iostream>
#include <memory>

#include "messages/report_exception.hpp"
#include "plugin.hpp"

using namespace tarn::evolution::pathfinder;

namespace {

template <class Function>
Function* lookUp(void* plugin, const char* name) {
  void* const found = dlsym(plugin, name);
  if (found == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<Function*>(found);
}

void* load(const char* file) {
  void* const plugin = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (plugin == nullptr) throw std::runtime_error(dlerror());
  return plugin;
}

template <class Caught>
bool throws(const std::function<void()>& ask) {
  try {
    ask();
  } catch (const Caught&) {
    return true;
  } catch (...) {
  }
  return false;
}

std::optional<std::vector<BaselineHop>> pathOf(VersionRepository& repository,
                                               const char16_t* name) {
  return repository.findPath({{name, SemVer{1, 0, 0}}}, {{name, SemVer{2, 0, 0}}});
}

bool report(bool holds, const char* what) {
  std::cout << (holds ? "ok: " : "NOT SO: ") << what << "\n";
  return holds;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("usage: plugin_host PLUGIN");
  using InvalidVersion =
      foundation::core::except::Exception<tarn_evo::messages::InvalidFamilyVersion>;
  void* const plugin = load(argv[1]);
  const std::unique_ptr<VersionRepository> repository(
      lookUp<MakeRepository>(plugin, "makeRepository")());
  const auto path = pathOf(*repository, u"shape");

  bool holds = report(path && path->size() == 1, "the plugin's repository is asked");
  holds &= report(throws<InvalidVersion>([&] {
                    repository->combine({{u"shape", SemVer{9, 0, 0}}});
                  }),
                  "the path finder's error arrives in the host by its type");
  holds &= report(lookUp<CatchesByType>(plugin, "catchesByType")(*repository),
                  "the path finder's error arrives in the plugin by its type");
  holds &= report(throws<PluginError>([&] { pathOf(*repository, u"broken"); }),
                  "the plugin's error arrives in the host by its type");
  return holds ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return 1;
}
