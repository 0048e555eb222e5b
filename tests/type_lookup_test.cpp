#include <gtest/gtest.h>

#include "pathfinder/version_baseline.hpp"
#include "platform/in_memory/type_store.hpp"
#include "platform/meta_registry.hpp"
#include "platform/model.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using tarn::meta::Class;
using tarn::meta::Package;
using tarn::meta::Type;
using tarn::meta::in_memory::TypeStore;
using Standard = tarn::meta::StandardTypes;

constexpr auto lookUp = &VersionBaseline::lookupStandardType;

tarn::meta::PrimitiveType* const handles[] = {
    &Standard::stringMeta,     &Standard::integerMeta,          &Standard::integer8Meta,
    &Standard::integer16Meta,  &Standard::integer64Meta,        &Standard::realMeta,
    &Standard::booleanMeta,    &Standard::unlimitedNaturalMeta, &Standard::uinteger8Meta,
    &Standard::uinteger16Meta, &Standard::uinteger64Meta,       &Standard::uuidMeta,
    &Standard::dateTimeMeta,   &Standard::stdstringMeta,        &Standard::qvArrayMeta,
    &Standard::jsonValueMeta,  &Standard::stringToStringMapMeta};

class TypeLookup : public testing::Test {
 protected:
  ~TypeLookup() override {
    store.reset();
    for (auto* handle : handles) *handle = {};
  }

  /// Which handles are filled, in order: "110".
  static std::string filled() {
    std::string result;
    for (const auto* handle : handles) result += *handle ? '1' : '0';
    return result;
  }

  TypeStore& store = TypeStore::instance();
  const LinkedMetamodel::AccessTag tag = TestRepository::accessTag();
  TestRepository repository{"A1:B1 B1"};
  const std::shared_ptr<LinkedMetamodel> a = repository.getLinkedMetamodels(u"A", v(1)).front();
};

TEST_F(TypeLookup, FillsStandardHandlesLazilyUpToTheMatch) {
  const std::pair<std::u16string, std::size_t> cases[] = {{u"tarn.meta.Integer8", 3},
                                                          {u"tarn.meta.String", 3},
                                                          {u"tarn.meta.UUID", 12},
                                                          {u"tarn.meta.StringToStringMap", 17}};
  for (const auto& [name, count] : cases) {
    const Type found = lookUp(name);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->getQualifiedName(), name);
    EXPECT_EQ(filled(), std::string(count, '1') + std::string(17 - count, '0'));
  }
  const auto replacement = store.addPrimitiveType(u"tarn.meta.String", store.metaPackage());
  EXPECT_EQ(lookUp(u"tarn.meta.String"), replacement);
  EXPECT_FALSE(Standard::stringMeta == replacement) << "a filled handle stays as it is";
}

TEST_F(TypeLookup, FrameworkTypesMustBeKnownAndInTheMetaPackage) {
  const Type model = tarn::Model::metaClass();
  for (const auto* name : {u"tarn.Model", u"tarn.meta.Model"}) EXPECT_EQ(lookUp(name), model);
  const Type element = tarn::ModelElement::metaClass();
  for (const auto* name : {u"tarn.ModelElement", u"tarn.meta.ModelElement"}) {
    EXPECT_EQ(lookUp(name), element);
  }
  const Class unseparated = store.addClass(u"tarnish", store.metaPackage());
  EXPECT_EQ(lookUp(u"tarnish"), unseparated);
  store.addClass(u"tarn.Elsewhere", store.makePackage(u"tarn", u"tarn/other"));
  store.addClass(u"tarn.Homeless");
  store.addClass(u"other.Type", store.metaPackage());
  bool loaded = false;
  store.addLoadable(u"tarn.meta.Late", [&](TypeStore&) { loaded = true; });
  for (const auto* name :
       {u"tarn.Elsewhere", u"tarn.Homeless", u"other.Type", u"tarn.meta.Late", u"tar", u""}) {
    EXPECT_FALSE(lookUp(name));
  }
  EXPECT_FALSE(loaded);
}

TEST_F(TypeLookup, LooksInTheMetamodelThenOneLevelDeepThenAmongStandardTypes) {
  const Class base = store.addClass(u"b.Base");
  const Class own = store.addClass(u"tarn.meta.String", {}, {base});
  const Class other = store.addClass(u"b.Other");
  store.reset();
  a->registerType(tag, own);
  a->registerType(tag, store.addClass(u"tarn.meta.String"));
  a->linkedMetamodels.at(u"B")->registerType(tag, other);
  a->linkedMetamodels.at(u"B")->registerType(tag, store.addPrimitiveType(u"b.Length"));
  EXPECT_EQ(a->findTypeInMetamodelOnly(u"tarn.meta.String"), own) << "the first registration wins";
  EXPECT_FALSE(a->findTypeInMetamodelOnly(u"b.Other"));
  EXPECT_EQ(a->findClass(u"b.Other"), other);
  EXPECT_TRUE(a->findType(u"b.Length"));
  EXPECT_FALSE(a->findClass(u"b.Length")) << "not a class";
  EXPECT_FALSE(a->findType(u"tarn.meta.Integer"));

  const VersionBaseline baseline = repository.baseline("A1");
  EXPECT_EQ(baseline.findClass(u"tarn.meta.String"), own);
  EXPECT_EQ(filled(), std::string(17, '0')) << "no standard type was asked for";
  EXPECT_TRUE(baseline.findType(u"tarn.meta.Integer"));
  EXPECT_FALSE(baseline.findClass(u"tarn.meta.Integer")) << "a primitive type is no class";
  std::vector<Type> subclasses = baseline.fetchSubclasses(base);
  EXPECT_EQ(subclasses, std::vector<Type>{own});
  a->fecthSubclassesInMetamodelOnly(base, subclasses);
  EXPECT_EQ(subclasses, (std::vector<Type>{own, own})) << "what was there stays";
  std::vector<Type> fromWithin{base};
  fromWithin.shrink_to_fit();
  for (const char16_t* name : {u"a.One", u"a.Two"}) {
    a->registerType(tag, store.addClass(name, {}, {base}));
  }
  a->fecthSubclassesInMetamodelOnly(fromWithin[0], fromWithin);
  EXPECT_EQ(fromWithin.size(), 4U) << "the base may lie in the list that grows";
}

// A handle is a truth value, and nothing else that a truth value is.
static_assert(std::is_convertible_v<Type, bool> && !std::is_convertible_v<Type, int>);
static_assert(std::is_invocable_v<std::equal_to<>, Type, Type>);
static_assert(!std::is_invocable_v<std::equal_to<>, Type, Package>);
static_assert(!std::is_invocable_v<std::equal_to<>, Type, bool>);
static_assert(!std::is_invocable_v<std::less<>, Type, Type>);
static_assert(!std::is_invocable_v<std::plus<>, Type, int>);

TEST_F(TypeLookup, CloneSharesContentAndEveryHandleIsCounted) {
  const Class shape = store.addClass(u"a.Shape");
  const Package package = store.makePackage(u"a", u"a/1");
  a->registerType(tag, shape);
  a->registerPackage(tag, package);
  a->registerPackage(tag, store.makePackage(u"a", u"a/2"));
  a->setMetamodelPackage(tag, package);
  const auto references = [this] { return store.find(u"a.Shape")->refCount(); };
  const std::size_t before = references();
  auto copy = a->clone();
  EXPECT_NE(copy, a);
  EXPECT_EQ(copy->linkedMetamodels, a->linkedMetamodels);
  EXPECT_EQ(copy->findType(u"a.Shape"), shape);
  EXPECT_EQ(copy->findPackageInMetamodelOnly(u"a"), package);
  EXPECT_EQ(copy->getMetamodelPackage(), package);
  EXPECT_EQ(references(), before + 1);
  copy = nullptr;

  Type other = shape;
  const Type moved = std::move(other);
  const bool isThere = other;  // NOLINT(bugprone-use-after-move): a moved-from handle is empty
  EXPECT_FALSE(isThere);
  other = moved;
  EXPECT_EQ(references(), before + 2);
  const Type empty;
  empty.addRef();
  empty.removeRef();  // neither does anything
  other = empty;
  EXPECT_EQ(references(), before + 1);
}

}  // namespace
}  // namespace test
