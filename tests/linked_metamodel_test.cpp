#include "pathfinder/linked_metamodel.hpp"

#include <gtest/gtest.h>

#include "platform/in_memory/type_store.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using tarn::meta::Class;
using tarn::meta::Package;
using tarn::meta::Type;
using tarn::meta::in_memory::TypeStore;

std::shared_ptr<LinkedMetamodel> make(const std::u16string& name, const VersionId& version) {
  return std::make_shared<LinkedMetamodel>(TestRepository::accessTag(),
                                           Metamodel(name, version, {}));
}

TEST(LinkedMetamodel, LinkingTakesInTheOthersLinks) {
  const auto a = make(u"A", v(1));
  const auto b = make(u"B", v(1));
  const auto c = make(u"C", v(1));
  EXPECT_TRUE(b->linkMetamodel(c));
  EXPECT_TRUE(a->linkMetamodel(b));
  EXPECT_TRUE(a->linkMetamodel(b)) << "the same object again";
  EXPECT_EQ(a->linkedMetamodels.at(u"C"), c);
  EXPECT_FALSE(a->linkMetamodel(make(u"B", v(1)))) << "equal content is another object";
  EXPECT_EQ(a->linkedMetamodels.at(u"B"), b);
}

TEST(LinkedMetamodel, ConflictKeepsWhatWasInsertedBeforeIt) {
  const auto a = make(u"A", v(1));
  const auto b = make(u"B", v(1));
  b->linkMetamodel(make(u"C", v(1)));
  const auto otherC = make(u"C", v(2));
  a->linkMetamodel(otherC);
  EXPECT_FALSE(a->linkMetamodel(b));
  EXPECT_EQ(a->linkedMetamodels.at(u"B"), b);
  EXPECT_EQ(a->linkedMetamodels.at(u"C"), otherC);
}

TEST(LinkedMetamodel, FindsDescriptorsOwnNameFirst) {
  const auto a = make(u"A", v(1));
  a->linkMetamodel(make(u"A", v(7)));
  a->linkMetamodel(make(u"B", v(2)));
  EXPECT_EQ(a->findMetamodel(u"A")->version, VersionId(v(1)));
  EXPECT_EQ(a->findMetamodel(u"B")->version, VersionId(v(2)));
  EXPECT_FALSE(a->findMetamodel(u"C"));
}

TEST(LinkedMetamodel, PrintsItselfAndItsLinks) {
  const auto a = make(u"A", v(1));
  EXPECT_EQ(printed(*a), "LinkedMetamodel{A@1.0.0}");
  a->linkMetamodel(make(u"B", u"spring"));
  EXPECT_EQ(printed(*a), "LinkedMetamodel{A@1.0.0 ->B@spring}");
}

class LinkedMetamodelTypes : public testing::Test {
 protected:
  ~LinkedMetamodelTypes() override { store.reset(); }

  TypeStore& store = TypeStore::instance();
  const LinkedMetamodel::AccessTag tag = TestRepository::accessTag();
  const std::shared_ptr<LinkedMetamodel> a = make(u"A", v(1));
};

TEST_F(LinkedMetamodelTypes, FirstRegistrationUnderANameWins) {
  const Class first = store.addClass(u"a.Shape");
  const Class second = store.addClass(u"a.Shape");
  a->registerType(tag, first);
  a->registerType(tag, second);
  EXPECT_EQ(a->findTypeInMetamodelOnly(u"a.Shape"), first);
  EXPECT_FALSE(a->findTypeInMetamodelOnly(u"a.Other"));

  const Package package = store.makePackage(u"a", u"a/1");
  a->registerPackage(tag, package);
  a->registerPackage(tag, store.makePackage(u"a", u"a/2"));
  EXPECT_EQ(a->findPackageInMetamodelOnly(u"a"), package);
}

TEST_F(LinkedMetamodelTypes, LooksOneLevelDeepAndNotAmongStandardTypes) {
  const auto b = make(u"B", v(1));
  const Class shape = store.addClass(u"b.Shape");
  b->registerType(tag, shape);
  b->registerType(tag, store.addPrimitiveType(u"b.Length"));
  EXPECT_FALSE(a->findType(u"b.Shape"));
  a->linkMetamodel(b);
  EXPECT_EQ(a->findType(u"b.Shape"), shape);
  EXPECT_EQ(a->findClass(u"b.Shape"), shape);
  EXPECT_TRUE(a->findType(u"b.Length"));
  EXPECT_FALSE(a->findClass(u"b.Length")) << "not a class";
  EXPECT_FALSE(a->findClass(u"b.Missing"));
  EXPECT_FALSE(a->findType(u"tarn.meta.String"));
}

TEST_F(LinkedMetamodelTypes, CollectsSubclassesOfItsOwnTypes) {
  const Class base = store.addClass(u"a.Base");
  const Class middle = store.addClass(u"a.Middle", {}, {base});
  const Class leaf = store.addClass(u"a.Leaf", {}, {middle});
  for (const Class& type : {middle, leaf, store.addClass(u"a.Other")}) a->registerType(tag, type);
  std::vector<Type> out{base};
  a->fecthSubclassesInMetamodelOnly(base, out);
  ASSERT_EQ(out.size(), 3U);
  EXPECT_EQ(out.front(), base) << "what was there stays";
  EXPECT_TRUE((out[1] == middle && out[2] == leaf) || (out[1] == leaf && out[2] == middle));
}

TEST_F(LinkedMetamodelTypes, CloneSharesContentAndEveryHandleIsCounted) {
  const Class shape = store.addClass(u"a.Shape");
  const Package package = store.makePackage(u"a", u"a/1");
  const std::size_t before = shape->refCount();
  const auto b = make(u"B", v(1));
  a->linkMetamodel(b);
  a->registerType(tag, shape);
  a->registerPackage(tag, package);
  a->setMetamodelPackage(tag, package);
  {
    const auto copy = a->clone();
    EXPECT_NE(copy, a);
    EXPECT_EQ(copy->linkedMetamodels.at(u"B"), b);
    EXPECT_EQ(copy->findType(u"a.Shape"), shape);
    EXPECT_EQ(copy->getMetamodelPackage(), package);
    EXPECT_EQ(shape->refCount(), before + 2);
    EXPECT_EQ(package->refCount(), 5U);
    copy->setMetamodelPackage(tag, Package());
    EXPECT_EQ(a->getMetamodelPackage(), package);
  }
  EXPECT_EQ(shape->refCount(), before + 1);
}

TEST_F(LinkedMetamodelTypes, HandlesCountReferences) {
  Class shape = store.addClass(u"a.Shape");
  const std::size_t held = shape->refCount();
  Type copy = shape;
  EXPECT_EQ(shape->refCount(), held + 1);
  const Type moved = std::move(copy);
  EXPECT_FALSE(copy);  // NOLINT(bugprone-use-after-move): a moved-from handle is empty
  EXPECT_EQ(shape->refCount(), held + 1);
  copy = moved;
  copy = Type();
  EXPECT_EQ(shape->refCount(), held + 1);
  copy.addRef();
  copy.removeRef();  // neither does anything: the handle is empty
}

}  // namespace
}  // namespace test
