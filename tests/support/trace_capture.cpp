#include "support/trace_capture.hpp"

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <sstream>
#include <utility>

#include "platform/in_memory/logging.hpp"

namespace test {

namespace {
constexpr const char* channelName = "tarn::evolution::pathfinder";
}

struct TraceCapture::Sink {
  boost::shared_ptr<std::ostringstream> out = boost::make_shared<std::ostringstream>();
  boost::shared_ptr<boost::log::sinks::synchronous_sink<boost::log::sinks::text_ostream_backend>>
      frontend = boost::make_shared<decltype(frontend)::element_type>();
};

TraceCapture::TraceCapture(unsigned levels) : sink_(std::make_unique<Sink>()) {
  namespace expressions = boost::log::expressions;
  sink_->frontend->locked_backend()->add_stream(sink_->out);
  sink_->frontend->set_filter(expressions::attr<std::string>("Channel") == channelName);
  sink_->frontend->set_formatter(expressions::stream << expressions::attr<int>("Severity") << " "
                                                     << expressions::smessage);
  boost::log::core::get()->add_sink(sink_->frontend);
  foundation::log::in_memory::setEnabledLevels(channelName, levels);
}

TraceCapture::~TraceCapture() {
  foundation::log::in_memory::setEnabledLevels(channelName, 0);
  boost::log::core::get()->remove_sink(sink_->frontend);
}

std::vector<std::string> TraceCapture::take() {
  std::istringstream text(sink_->out->str());
  sink_->out->str({});
  std::vector<std::string> records;
  for (std::string line; std::getline(text, line);) records.push_back(line);
  return records;
}

}  // namespace test
