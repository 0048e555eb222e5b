#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "catalogue/catalogue.hpp"
#include "support/test_folder.hpp"
#include "support/test_repository.hpp"

namespace test {

/// What the repository holds, as a catalogue may.
tarn::evolution::catalogue::CatalogueContent contentOf(TestRepository& repository);
inline tarn::evolution::catalogue::CatalogueContent contentOf(TestRepository&& repository) {
  return contentOf(repository);
}

/// What a CatalogueError says, without the name of `file` before it; "no error" when none is
/// thrown.
std::string catalogueErrorOf(const std::filesystem::path& file,
                             const std::function<void()>& action);

/// Gives each test a folder of its own for catalogues and stores.
class StoreFolder : public testing::Test, protected TestFolder {
 protected:
  /// Writes "NAME.json" and, unless told otherwise, makes "NAME.store" of it.
  void make(const std::string& name, const tarn::evolution::catalogue::CatalogueContent& content,
            bool withStore = true) const;
};

}  // namespace test
