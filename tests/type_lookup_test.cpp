#include <gtest/gtest.h>

#include "pathfinder/version_baseline.hpp"
#include "platform/in_memory/type_store.hpp"
#include "platform/meta_registry.hpp"
#include "platform/model.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using tarn::meta::Class;
using tarn::meta::StandardTypes;
using tarn::meta::Type;
using tarn::meta::in_memory::TypeStore;

tarn::meta::PrimitiveType* const handles[] = {
    &StandardTypes::stringMeta,
    &StandardTypes::integerMeta,
    &StandardTypes::integer8Meta,
    &StandardTypes::integer16Meta,
    &StandardTypes::integer64Meta,
    &StandardTypes::realMeta,
    &StandardTypes::booleanMeta,
    &StandardTypes::unlimitedNaturalMeta,
    &StandardTypes::uinteger8Meta,
    &StandardTypes::uinteger16Meta,
    &StandardTypes::uinteger64Meta,
    &StandardTypes::uuidMeta,
    &StandardTypes::dateTimeMeta,
    &StandardTypes::stdstringMeta,
    &StandardTypes::qvArrayMeta,
    &StandardTypes::jsonValueMeta,
    &StandardTypes::stringToStringMapMeta,
};

class TypeLookup : public testing::Test {
 protected:
  TypeLookup() { forget(); }
  ~TypeLookup() override { forget(); }

  void forget() {
    store.reset();
    for (auto* handle : handles) *handle = {};
  }

  /// How many handles, from the first on, are filled.
  static std::size_t filled() {
    const auto end = std::find_if(std::begin(handles), std::end(handles),
                                  [](const auto* handle) { return !*handle; });
    EXPECT_TRUE(std::all_of(end, std::end(handles), [](const auto* handle) { return !*handle; }));
    return static_cast<std::size_t>(end - std::begin(handles));
  }

  TypeStore& store = TypeStore::instance();
};

TEST_F(TypeLookup, FillsStandardHandlesLazilyUpToTheMatch) {
  const struct {
    std::u16string name;
    std::size_t filledAfter;
  } cases[] = {{u"tarn.meta.Integer8", 3},
               {u"tarn.meta.String", 3},
               {u"tarn.meta.UUID", 12},
               {u"tarn.meta.StringToStringMap", 17}};
  for (const auto& [name, filledAfter] : cases) {
    const Type found = VersionBaseline::lookupStandardType(name);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->getQualifiedName(), name);
    EXPECT_EQ(filled(), filledAfter);
  }
}

TEST_F(TypeLookup, AMatchIsAnsweredByTheRegistryAndNotByTheHandle) {
  VersionBaseline::lookupStandardType(u"tarn.meta.String");
  const auto replacement = store.addPrimitiveType(u"tarn.meta.String", store.metaPackage());
  EXPECT_EQ(VersionBaseline::lookupStandardType(u"tarn.meta.String"), replacement);
  EXPECT_FALSE(StandardTypes::stringMeta == replacement);
}

TEST_F(TypeLookup, RootClassesGoByTwoNamesEach) {
  for (const auto* name : {u"tarn.Model", u"tarn.meta.Model"}) {
    EXPECT_EQ(VersionBaseline::lookupStandardType(name), tarn::Model::metaClass());
  }
  for (const auto* name : {u"tarn.ModelElement", u"tarn.meta.ModelElement"}) {
    EXPECT_EQ(VersionBaseline::lookupStandardType(name), tarn::ModelElement::metaClass());
  }
}

TEST_F(TypeLookup, FrameworkTypesMustBeKnownAndInTheMetaPackage) {
  const Class known = store.addClass(u"tarn.meta.Known", store.metaPackage());
  const Class unseparated = store.addClass(u"tarnish", store.metaPackage());
  store.addClass(u"tarn.Elsewhere", store.makePackage(u"tarn", u"tarn/other"));
  store.addClass(u"tarn.Homeless");
  store.addClass(u"other.Type", store.metaPackage());
  bool loaded = false;
  store.addLoadable(u"tarn.meta.Late", [&](TypeStore&) { loaded = true; });

  EXPECT_EQ(VersionBaseline::lookupStandardType(u"tarn.meta.Known"), known);
  EXPECT_EQ(VersionBaseline::lookupStandardType(u"tarnish"), unseparated);
  for (const auto* name : {u"tarn.Elsewhere", u"tarn.Homeless", u"other.Type", u"tarn.meta.Late",
                           u"tar", u"", u"tarn.meta.Missing"}) {
    EXPECT_FALSE(VersionBaseline::lookupStandardType(name));
  }
  EXPECT_FALSE(loaded);
}

TEST_F(TypeLookup, BaselineTypesComeBeforeStandardTypes) {
  TestRepository repository;
  repository.add(u"A", v(1));
  const auto a = repository.only(u"A", v(1));
  const Class base = store.addClass(u"a.Base");
  const Class own = store.addClass(u"tarn.meta.String", {}, {base});
  store.reset();
  a->registerType(TestRepository::accessTag(), own);
  const VersionBaseline baseline = repository.baseline({{u"A", v(1)}});
  EXPECT_EQ(baseline.findType(u"tarn.meta.String"), own);
  EXPECT_EQ(baseline.findClass(u"tarn.meta.String"), own);
  EXPECT_EQ(filled(), 0U) << "no standard type was asked for";
  EXPECT_TRUE(baseline.findType(u"tarn.meta.Integer"));
  EXPECT_FALSE(baseline.findClass(u"tarn.meta.Integer")) << "a primitive type is no class";
  EXPECT_EQ(baseline.fetchSubclasses(base), std::vector<Type>{own});
  EXPECT_TRUE(VersionBaseline().fetchSubclasses(base).empty());
}

}  // namespace
}  // namespace test
