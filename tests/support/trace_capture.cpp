#include "support/trace_capture.hpp"

#include <gtest/gtest.h>

#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/utility/setup/console.hpp>
#include <sstream>

#include "platform/in_memory/logging.hpp"
#include "support/items.hpp"

namespace test {

std::vector<std::string> traceOf(unsigned levels, const std::function<void()>& action) {
  namespace expressions = boost::log::expressions;
  const std::string channel = "tarn::evolution::pathfinder";
  std::stringstream text;
  const auto sink = boost::log::add_console_log(
      text, boost::log::keywords::filter = expressions::attr<std::string>("Channel") == channel,
      boost::log::keywords::format = expressions::stream << expressions::attr<int>("Severity")
                                                         << " " << expressions::smessage);
  foundation::log::in_memory::setEnabledLevels(channel, levels);
  EXPECT_NO_THROW(action());
  foundation::log::in_memory::setEnabledLevels(channel, 0);
  boost::log::core::get()->remove_sink(sink);
  return parted(text.str(), '\n');
}

}  // namespace test
