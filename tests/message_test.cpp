#include "messages/messages.hpp"

#include <gtest/gtest.h>

#include <boost/exception/get_error_info.hpp>
#include <memory>

#include "messages/report_exception.hpp"

namespace test {
namespace {

using foundation::core::except::Exception;
using foundation::core::except::IException;
using foundation::core::except::IMsgIDException;
using tarn_evo::messages::ConflictingDependencies;
using tarn_evo::messages::InvalidFamilyVersion;

template <class Caught, class Message>
bool isCaughtAs(const Message& message) {
  try {
    tarn::reportException(message);
  } catch (const Caught&) {
    return true;
  } catch (...) {
    return false;
  }
}

TEST(Messages, CarryCatalogueKeyAndArguments) {
  const ConflictingDependencies conflict;
  EXPECT_EQ(conflict.catalogue, "tarn_evo:messages");
  EXPECT_EQ(conflict.key, "ConflictingDependencies");
  EXPECT_TRUE(conflict.args.empty());
  const InvalidFamilyVersion unknown(std::string("2.1.0"), u"M");
  EXPECT_EQ(unknown.key, "InvalidFamilyVersion");
  ASSERT_EQ(unknown.args.size(), 2U);
  EXPECT_EQ(unknown.args[0].index(), 1U);
  EXPECT_EQ(unknown.args[1].index(), 2U);
}

TEST(Messages, AreCaughtByEveryBase) {
  const ConflictingDependencies message;
  EXPECT_TRUE((isCaughtAs<Exception<ConflictingDependencies, std::exception, void>>(message)));
  EXPECT_TRUE(isCaughtAs<IMsgIDException>(message));
  EXPECT_TRUE(isCaughtAs<std::exception>(message));
  EXPECT_TRUE(isCaughtAs<boost::exception>(message));
  EXPECT_FALSE((isCaughtAs<Exception<InvalidFamilyVersion, std::exception, void>>(message)));
}

TEST(Messages, ReadAsSentences) {
  const auto textOf = [](const auto& message) {
    try {
      tarn::reportException(message);
    } catch (const std::exception& error) {
      return std::string(error.what());
    }
  };
  EXPECT_EQ(textOf(InvalidFamilyVersion(std::string("9.9.9"), u"A")),
            "There is no version 9.9.9 of metamodel \"A\".");
  EXPECT_EQ(textOf(InvalidFamilyVersion(std::u16string(u"Fr\u00fchling %1"), u"\u00c4")),
            "There is no version Fr\xc3\xbchling %1 of metamodel \"\xc3\x84\".");
  EXPECT_NE(textOf(ConflictingDependencies()).find("dependencies"), std::string::npos);
  EXPECT_EQ(textOf(resource_core::BaseMsgID({long{7}}, "shop", "Closed")), "shop/Closed 7");
}

TEST(Messages, CloneAndRethrowKeepTypeAndContent) {
  using Unknown = Exception<InvalidFamilyVersion, std::exception, void>;
  const Unknown original(InvalidFamilyVersion(std::string("1.0.0"), u"M"));
  const std::unique_ptr<IException> copy(original.clone());
  try {
    copy->rethrow();
    FAIL() << "no exception";
  } catch (const Unknown& caught) {
    EXPECT_NE(&caught, copy.get());
    EXPECT_EQ(caught.GetBaseMsgIDObj().args, original.GetBaseMsgIDObj().args);
    EXPECT_EQ(caught.GetID(), "tarn_evo:messages/InvalidFamilyVersion");
    EXPECT_STREQ(caught.what(), original.what());
    EXPECT_EQ(caught.GetUnicodeMessageTxt(), u"There is no version 1.0.0 of metamodel \"M\".");
    EXPECT_EQ(boost::get_error_info<boost::throw_line>(caught), nullptr);
    EXPECT_EQ(boost::get_error_info<boost::throw_file>(caught), nullptr);
    EXPECT_EQ(boost::get_error_info<boost::throw_function>(caught), nullptr);
  }
}

}  // namespace
}  // namespace test
