#include "platform/diagnostic_logger.hpp"

#include <atomic>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/keywords/channel.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>
#include <boost/make_shared.hpp>
#include <map>
#include <mutex>

#include "platform/in_memory/logging.hpp"

// Boost.Log is slow to compile; nothing outside this file includes it.
namespace foundation::log {

namespace {

/// The enabled levels by channel, and the loggers to tell when they change.
struct Channels {
  std::mutex mutex;
  std::map<std::string, unsigned> levels;
  std::multimap<std::string, basic_diagnostic_logger<char>*> loggers;

  static Channels& instance() {
    static Channels channels;
    return channels;
  }
};

template <class Value>
Value attribute(const boost::log::record_view& record, const char* name) {
  const auto found = boost::log::extract<Value>(name, record);
  return found ? found.get() : Value();
}

/// Shows records to all functions that were added. The frontend has a recursive mutex locked
/// whenever one of these is called.
class CallbackBackend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
 public:
  using Show = std::function<void(const in_memory::RecordView&)>;

  void consume(const boost::log::record_view& record) {
    for (auto next = callbacks_.begin(); next != callbacks_.end();) {
      const Turn turn(*this, next);
      if (turn->isRemoved) continue;
      turn->show({attribute<int>(record, "Severity"), attribute<std::string>(record, "Channel"),
                  attribute<std::string>(record, "Message")});
    }
  }

  in_memory::RecordSinkId add(Show&& show) {
    const in_memory::RecordSinkId id{++last_};
    callbacks_.emplace(id, Callback{std::move(show)});
    isListened_ = true;
    return id;
  }

  void remove(in_memory::RecordSinkId id) {
    const auto found = callbacks_.find(id);
    if (found == callbacks_.end()) return;
    found->second.isRemoved = true;
    if (found->second.turns == 0) erase(found);
  }

  bool isListened() const { return isListened_; }

 private:
  struct Callback {
    Show show;
    int turns = 0;  // of it that have not ended: it may write records itself
    bool isRemoved = false;
  };
  using Callbacks = std::map<in_memory::RecordSinkId, Callback>;

  /// As long as it lives, a callback stays; then it goes on to the next one.
  class Turn {
   public:
    Turn(CallbackBackend& backend, Callbacks::iterator& next) : backend_(backend), next_(next) {
      ++next_->second.turns;
    }
    ~Turn() {
      const auto mine = next_++;
      if (--mine->second.turns == 0 && mine->second.isRemoved) backend_.erase(mine);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    Callback* operator->() const { return &next_->second; }

   private:
    CallbackBackend& backend_;
    Callbacks::iterator& next_;
  };

  void erase(Callbacks::iterator callback) {
    const auto destroyed = callbacks_.extract(callback);
    isListened_ = !callbacks_.empty();
  }

  Callbacks callbacks_;
  std::uint64_t last_ = 0;
  std::atomic<bool> isListened_{false};
};

using CallbackSink = boost::log::sinks::synchronous_sink<CallbackBackend>;

boost::shared_ptr<CallbackSink> makeCallbackSink() {
  const auto backend = boost::make_shared<CallbackBackend>();
  auto sink = boost::make_shared<CallbackSink>(backend);
  sink->set_filter([&listened = *backend](const boost::log::attribute_value_set& /*attributes*/) {
    return listened.isListened();
  });
  boost::log::core::get()->add_sink(sink);
  return sink;
}

/// The one Boost.Log sink of all callbacks, which refuses records when there is nobody to show them
/// to. It is never destroyed: a static object of the host may remove its callback very late.
CallbackSink& callbackSink() {
  static const auto& sink = *new boost::shared_ptr<CallbackSink>(makeCallbackSink());
  return *sink;
}

}  // namespace

in_memory::RecordSinkId in_memory::addRecordSink(std::function<void(const RecordView&)> show) {
  return callbackSink().locked_backend()->add(std::move(show));
}

void in_memory::removeRecordSink(RecordSinkId sink) {
  callbackSink().locked_backend()->remove(sink);
}

/// The Boost.Log source: records carry the attributes "Severity" (int) and "Channel" (std::string).
/// It locks itself while the severity is set and the record is opened, and at no other time.
template <class CharT>
class basic_diagnostic_logger<CharT>::Source {
 public:
  explicit Source(const std::string& name)
      : channel(name), logger(boost::log::keywords::channel = name) {}

  std::string channel;
  boost::log::sources::severity_channel_logger_mt<int, std::string> logger;
};

template <class CharT>
struct basic_diagnostic_logger<CharT>::Record::Draft {
  explicit Draft(boost::log::record&& opened) : record(std::move(opened)), out(record) {}

  boost::log::record record;
  boost::log::record_ostream out;
};

template <class CharT>
basic_diagnostic_logger<CharT>::basic_diagnostic_logger(const std::basic_string<CharT>& channel)
    : source_(std::make_unique<Source>(channel)) {
  Channels& channels = Channels::instance();
  const std::lock_guard lock(channels.mutex);
  const auto level = channels.levels.find(channel);
  if (level != channels.levels.end()) enableLevels(level->second);
  channels.loggers.emplace(channel, this);
}

template <class CharT>
basic_diagnostic_logger<CharT>::~basic_diagnostic_logger() {
  Channels& channels = Channels::instance();
  const std::lock_guard lock(channels.mutex);
  auto [position, end] = channels.loggers.equal_range(source_->channel);
  while (position != end && position->second != this) ++position;
  if (position != end) channels.loggers.erase(position);
}

template <class CharT>
auto basic_diagnostic_logger<CharT>::openRecord(unsigned severity) -> Record {
  if (!boost::log::core::get()->get_logging_enabled()) return {};
  boost::log::record opened =
      source_->logger.open_record(boost::log::keywords::severity = static_cast<int>(severity));
  if (!opened) return {};
  return Record(std::make_unique<typename Record::Draft>(std::move(opened)));
}

template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record() noexcept = default;
template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record(Record&&) noexcept = default;
template <class CharT>
auto basic_diagnostic_logger<CharT>::Record::operator=(Record&&) noexcept -> Record& = default;
template <class CharT>
basic_diagnostic_logger<CharT>::Record::~Record() = default;

template <class CharT>
basic_diagnostic_logger<CharT>::Record::Record(std::unique_ptr<Draft> draft) noexcept
    : draft_(std::move(draft)) {}

template <class CharT>
std::basic_ostream<CharT>& basic_diagnostic_logger<CharT>::Record::stream() {
  return draft_->out.stream();
}

template <class CharT>
void basic_diagnostic_logger<CharT>::Record::push() {
  const std::unique_ptr<Draft> finished = std::move(draft_);
  finished->out.flush();
  boost::log::core::get()->push_record(std::move(finished->record));
}

template class basic_diagnostic_logger<char>;

void in_memory::setEnabledLevels(const std::string& channel, unsigned flags) {
  Channels& channels = Channels::instance();
  const std::lock_guard lock(channels.mutex);
  channels.levels[channel] = flags;
  auto [position, end] = channels.loggers.equal_range(channel);
  for (; position != end; ++position) position->second->enableLevels(flags);
}

}  // namespace foundation::log
