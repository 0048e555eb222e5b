#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "pathfinder/version_id.hpp"
#include "platform/text.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

TEST(SemVer, ParsesExactlyTwoOrThreeComponents) {
  using namespace std::string_literals;
  const struct {
    std::u16string text;
    std::optional<SemVer> expected;
  } cases[] = {
      {u"0.0.0", SemVer{0, 0, 0}},
      {u"0.0", SemVer{0, 0, 0}},
      {u"1.2", SemVer{1, 2, 0}},
      {u"10.20.30", SemVer{10, 20, 30}},
      {u"1.2.3\0.garbage"s, SemVer{1, 2, 3}},
      {u"1.2\0"s, SemVer{1, 2, 0}},
      {u"18446744073709551615.0.1", SemVer{largest, 0, 1}},
      {u"18446744073709551616.0.1", SemVer{0, 0, 1}},
      {u"1.99999999999999999999.0", SemVer{1, 7766279631452241919U, 0}},
      {u"", std::nullopt},
      {u"1", std::nullopt},
      {u"1.", std::nullopt},
      {u"1.2.", std::nullopt},
      {u".1.2", std::nullopt},
      {u"1..2", std::nullopt},
      {u"01.2.3", std::nullopt},
      {u"1.02", std::nullopt},
      {u"1.2.00", std::nullopt},
      {u"1.2.3.4", std::nullopt},
      {u"1.2.3-beta", std::nullopt},
      {u"1.2.3+5", std::nullopt},
      {u" 1.2.3", std::nullopt},
      {u"1.2.3 ", std::nullopt},
      {u"v1.2.3", std::nullopt},
      {u"-1.2.3", std::nullopt},
      {u"1.\u0662", std::nullopt},  // a digit of another script
      {u"1\0.2"s, std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(SemVer::parse(text), expected) << fl::i18n::ustring_to_utf8(text);
  }
}

TEST(SemVer, OrdersByTheFirstComponentThatDiffers) {
  const SemVer ascending[] = {{0, 0, 0}, {0, 0, largest}, {0, 1, 0}, {1, 0, 0},
                              {1, 9, 9}, {1, 10, 0},      {2, 0, 0}, {largest, 0, 0}};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << " " << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j) << i << " " << j;
    }
  }
}

TEST(SemVer, ReadsWhatItPrints) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 200; ++i) {
    const SemVer version{random() >> (random() % 64), random() >> (random() % 64), random() % 3};
    const std::string text = printed(version);
    EXPECT_EQ(SemVer::parse(std::u16string(text.begin(), text.end())), version) << text;
  }
}

TEST(SemVerRange, IntersectionIsWhatBothInclude) {
  std::mt19937 random(2);
  const auto anyVersion = [&] { return SemVer{random() % 3, random() % 2, 0}; };
  for (int i = 0; i < 500; ++i) {
    const SemVerRange left{anyVersion(), anyVersion()};
    const SemVerRange right{anyVersion(), anyVersion()};
    const SemVerRange both = left.intersection(right);
    const SemVer version = anyVersion();
    EXPECT_EQ(both.includes(version), left.includes(version) && right.includes(version));
    EXPECT_FALSE(both.upper < both.lower);
  }
  const SemVerRange one{{1, 0, 0}, {2, 0, 0}};
  const SemVerRange three{{3, 0, 0}, {4, 0, 0}};
  const SemVerRange collapsed{{3, 0, 0}, {3, 0, 0}};
  EXPECT_EQ(one.intersection(three), collapsed);
  EXPECT_EQ(three.intersection(one), collapsed);
  EXPECT_TRUE(one.includes({1, 99, 99}));
  EXPECT_FALSE(one.includes({2, 0, 0}));
}

TEST(VersionId, TellsTextsFromSemanticVersions) {
  const VersionId semantic(SemVer{1, 0, 0});
  const VersionId text(u"1.0.0");
  EXPECT_FALSE(semantic == text);
  EXPECT_EQ(semantic.getSemVer(), (SemVer{1, 0, 0}));
  try {
    text.getSemVer();
    FAIL() << "no exception";
  } catch (const std::bad_variant_access& error) {
    EXPECT_STREQ(error.what(), "std::get: wrong index for variant");
  }
  EXPECT_EQ(printed(semantic), "1.0.0");
  EXPECT_EQ(printed(VersionId(u"Fr\u00fchling")), "Fr\xc3\xbchling");
  EXPECT_EQ(printed(VersionId(u"\U0001F331")), "\xf0\x9f\x8c\xb1");
  EXPECT_EQ(printed(VersionId(u"a\xd83cz")), "a\xef\xbf\xbdz") << "a lone surrogate";
}

TEST(VersionRange, IncludesOnlyItsOwnKind) {
  EXPECT_TRUE(between(1, 2).includes(v(1)));
  EXPECT_FALSE(between(1, 2).includes(u"1.0.0"));
  EXPECT_TRUE(VersionRange(u"spring").includes(u"spring"));
  EXPECT_FALSE(VersionRange(u"spring").includes(u"spring 2"));
  EXPECT_FALSE(VersionRange(u"1.0.0").includes(v(1)));
}

TEST(VersionRange, SingleVersionIncludesJustThatOne) {
  const VersionRange single = VersionRange::singleVersion(SemVer{1, 2, 3});
  EXPECT_EQ(single, VersionRange(SemVerRange{{1, 2, 3}, {1, 2, 4}}));
  EXPECT_EQ(VersionRange::singleVersion(u"spring"), VersionRange(u"spring"));
  const VersionRange wrapped = VersionRange::singleVersion(SemVer{1, 2, largest});
  EXPECT_EQ(wrapped, VersionRange(SemVerRange{{1, 2, largest}, {1, 2, 0}}));
  EXPECT_FALSE(wrapped.includes(SemVer{1, 2, largest}));
}

TEST(VersionRange, IntersectsTextsAsWholes) {
  const VersionRange spring(u"spring");
  EXPECT_EQ(spring.intersection(spring), spring);
  EXPECT_EQ(spring.intersection(u"autumn"), VersionRange());
  EXPECT_EQ(between(1, 4).intersection(between(2, 9)), between(2, 4));
}

TEST(VersionRange, MixedIntersectionsDifferByOperand) {
  VersionRange text(u"spring");
  text.intersect(between(2, 3));
  EXPECT_EQ(text, between(2, 2));

  VersionRange semantic = between(2, 3);
  EXPECT_THROW(semantic.intersect(u"spring"), std::bad_variant_access);
  EXPECT_EQ(semantic, VersionRange()) << "the state that the exception leaves";

  const VersionRange untouched = between(2, 3);
  EXPECT_THROW(untouched.intersection(u"spring"), std::bad_variant_access);
  EXPECT_EQ(untouched, between(2, 3));
}

TEST(VersionRange, PrintsBoundsOrText) {
  EXPECT_EQ(printed(between(1, 2)), "[1.0.0, 2.0.0)");
  EXPECT_EQ(printed(VersionRange(u"spring")), "spring");
}

}  // namespace
}  // namespace test
