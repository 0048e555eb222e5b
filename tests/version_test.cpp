#include <gtest/gtest.h>

#include <limits>
#include <unordered_set>

#include "pathfinder/version_id.hpp"
#include "platform/text.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using namespace std::string_literals;

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

TEST(SemVer, ParsesExactlyTwoOrThreeComponents) {
  const std::pair<std::u16string, SemVer> accepted[] = {
      {u"0.0.0", {0, 0, 0}},
      {u"0.0", {0, 0, 0}},
      {u"1.2", {1, 2, 0}},
      {u"10.20.30", {10, 20, 30}},
      {u"1.2.3\0.garbage"s, {1, 2, 3}},
      {u"1.2\0"s, {1, 2, 0}},
      {u"18446744073709551615.0.1", {largest, 0, 1}},
      {u"18446744073709551616.0.1", {0, 0, 1}},
      {u"1.99999999999999999999.0", {1, 7766279631452241919U, 0}}};
  for (const auto& [text, expected] : accepted) {
    EXPECT_EQ(SemVer::parse(text), expected) << fl::i18n::ustring_to_utf8(text);
  }
  const std::u16string refused[] =
      {u"",       u"1",      u"1.",     u"1.2.",       u".1.2",    u"1..2",
       u"01.2.3", u"1.02",   u"1.2.00", u"1.2.3.4",    u"1.2.3.",  u" 1.2.3",
       u"1.2.3 ", u"v1.2.3", u"-1.2.3", u"1.2.3-beta", u"1.2.3+5", u"1.2/3",
       u"1.:",    u"1./",    u"1\0.2"s, u"1.\u0662"};  // the last one a digit of another script
  for (const auto& text : refused) {
    EXPECT_FALSE(SemVer::parse(text)) << fl::i18n::ustring_to_utf8(text);
  }
}

TEST(SemVer, OrdersByTheFirstComponentThatDiffers) {
  const SemVer ascending[] = {{0, 0, 0}, {0, 0, largest}, {0, 1, 0}, {1, 0, 0},
                              {1, 9, 9}, {1, 10, 0},      {2, 0, 0}, {largest, 0, 0}};
  for (const SemVer& left : ascending) {
    for (const SemVer& right : ascending) {
      SCOPED_TRACE(printed(left) + " " + printed(right));
      EXPECT_EQ(left < right, &left < &right);
      EXPECT_EQ(left > right, &left > &right);
      EXPECT_EQ(left <= right, &left <= &right);
      EXPECT_EQ(left >= right, &left >= &right);
      EXPECT_EQ(left == right, &left == &right);
      EXPECT_EQ(left != right, &left != &right);
    }
  }
}

TEST(VersionId, TellsTextsFromSemanticVersions) {
  const VersionId text(u"1.0.0");
  EXPECT_FALSE(text == VersionId(v(1)));
  EXPECT_EQ(messageOf<std::bad_variant_access>([&] { text.getSemVer(); }),
            "std::get: wrong index for variant");
  EXPECT_EQ(printed(VersionId(SemVer{1, 20, 3})), "1.20.3");
  EXPECT_EQ(printed(VersionId(u"Fr\u00fchling")), "Fr\xc3\xbchling");
  EXPECT_EQ(printed(VersionId(u"\U0001F331")), "\xf0\x9f\x8c\xb1");
  EXPECT_EQ(printed(VersionId(u"a\xd83cz")), "a\xef\xbf\xbdz") << "a lone surrogate";
}

TEST(VersionId, IsAKeyOfHashedContainers) {
  const std::unordered_set<VersionId> ids{u"1.2.3", SemVer{1, 2, 3}, u"spring", u"1.2.3"};
  EXPECT_EQ(ids.size(), 3U);
  EXPECT_EQ(ids.count(SemVer{1, 2, 3}), 1U);
  EXPECT_EQ(std::hash<VersionId>()(SemVer{1, 2, 3}), 1002003U);
  EXPECT_EQ(std::hash<VersionId>()(u"spring"), std::hash<std::u16string>()(u"spring"));
}

// What must not compile. The types are parameters, without which it would end the compilation.
template <class Value>
concept TakesZero = requires {
  Value(0);
};
template <class Value>
concept TakesNull = requires {
  Value(nullptr);
};
template <class Described>
concept TakesZeroForAVersion = requires {
  Described(u"A", 0, {});
};
static_assert(!TakesZero<VersionId> && !TakesZero<VersionRange>);
static_assert(!TakesNull<VersionId> && !TakesNull<VersionRange>);
static_assert(!TakesZeroForAVersion<Metamodel>);

TEST(VersionId, TakesWhatIsWrittenForAVersion) {
  const SemVer semantic{1, 2, 3};
  const std::u16string text = u"spring";
  EXPECT_EQ(VersionId({1, 2, 3}), VersionId(semantic));
  EXPECT_EQ(VersionId{text}, VersionId(u"spring"));
  EXPECT_EQ(VersionId({u"spring"}), VersionId(text));
  EXPECT_EQ(Metamodel(u"A", {semantic}, {}).version, VersionId(semantic));
  EXPECT_EQ(Metamodel(u"A", {}, {}).version, VersionId());
  EXPECT_EQ(VersionRange({{1, 0, 0}, {2, 0, 0}}), between(1, 2));
  EXPECT_EQ(Dependency(u"A", {u"spring"}).range, VersionRange(text));
}

TEST(VersionRange, IncludesOnlyItsOwnKind) {
  EXPECT_TRUE(between(1, 2).includes(v(1)));
  EXPECT_TRUE(between(1, 2).includes(SemVer{1, 99, 99}));
  EXPECT_FALSE(between(1, 2).includes(v(2)));
  EXPECT_FALSE(between(1, 2).includes(SemVer{0, 99, 99}));
  EXPECT_FALSE(between(1, 2).includes(u"1.0.0"));
  EXPECT_TRUE(VersionRange(u"spring").includes(u"spring"));
  EXPECT_FALSE(VersionRange(u"spring").includes(u"spring 2"));
  EXPECT_FALSE(VersionRange(u"1.0.0").includes(v(1)));
  EXPECT_EQ(printed(between(1, 2)), "[1.0.0, 2.0.0)");
  EXPECT_EQ(printed(VersionRange(u"spring")), "spring");
}

TEST(VersionRange, SingleVersionIncludesJustThatOne) {
  const auto single = [](const VersionId& id) { return VersionRange::singleVersion(id); };
  EXPECT_EQ(single(SemVer{1, 2, 3}), VersionRange(SemVerRange{{1, 2, 3}, {1, 2, 4}}));
  EXPECT_EQ(single(u"spring"), VersionRange(u"spring"));
  EXPECT_EQ(single(SemVer{1, 2, largest}), VersionRange(SemVerRange{{1, 2, largest}, {1, 2, 0}}));
}

TEST(VersionRange, MixedIntersectionsDifferByOperand) {
  const VersionRange spring(u"spring");
  const VersionRange cases[][3] = {
      {between(1, 4), between(2, 9), between(2, 4)}, {between(1, 5), between(2, 3), between(2, 3)},
      {between(2, 3), between(1, 5), between(2, 3)}, {between(1, 2), between(3, 4), between(3, 3)},
      {between(3, 4), between(1, 2), between(3, 3)}, {spring, spring, spring},
      {spring, u"autumn", VersionRange()},           {spring, between(2, 3), between(2, 2)}};
  for (const auto& [left, right, expected] : cases) {
    EXPECT_EQ(left.intersection(right), expected) << left << " " << right;
  }
  VersionRange semantic = between(2, 3);
  EXPECT_THROW(semantic.intersection(spring), std::bad_variant_access);
  EXPECT_EQ(semantic, between(2, 3));
  EXPECT_THROW(semantic.intersect(spring), std::bad_variant_access);
  EXPECT_EQ(semantic, VersionRange()) << "the state that the exception leaves";
}

}  // namespace
}  // namespace test
