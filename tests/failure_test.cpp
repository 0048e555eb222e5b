#include <gtest/gtest.h>

#include <cerrno>
#include <mutex>
#include <shared_mutex>
#include <system_error>

#include "messages/scoped_event.hpp"
#include "messages/trace.hpp"
#include "pathfinder/reader_writer_lock.hpp"
#include "platform/in_memory/listener.hpp"
#include "support/test_repository.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using Selection = std::unordered_map<std::u16string, VersionId>;

/// A question whose search meets every callback: text versions, links, several steps.
class CallbackFailures : public testing::Test {
 protected:
  static std::unique_ptr<TestRepository> makeRepository() {
    auto repository = std::make_unique<TestRepository>();
    repository->add(u"A", u"first");
    repository->addEquivalent(u"A", u"first", v(1));
    repository->add(u"A", v(2));
    repository->add(u"A", v(3));
    repository->addHop(u"A", u"first", v(2));
    repository->addHop(u"A", v(2), v(3));
    repository->add(u"B", v(1), {{u"A", between(1, 3)}});
    repository->add(u"B", v(2), {{u"A", between(3, 4)}});
    repository->addHop(u"B", v(1), v(2));
    return repository;
  }

  static std::optional<std::vector<BaselineHop>> ask(TestRepository& repository) {
    return repository.findPath(Selection{{u"A", u"first"}, {u"B", v(1)}}, Selection{{u"B", v(2)}});
  }
};

TEST_F(CallbackFailures, ReachTheCallerAndLeaveTheRepositoryWhole) {
  const auto fresh = makeRepository();
  const std::string expected = describe(ask(*fresh));
  const std::size_t calls = fresh->calls.size();
  ASSERT_GT(calls, 30U);
  for (const char* operation :
       {"getEquivalentSemVer", "getMetamodel", "findMetamodels", "findHops", "loadMetamodel"}) {
    EXPECT_FALSE(fresh->callsOf(operation).empty()) << operation;
  }
  for (std::size_t k = 1; k <= calls; ++k) {
    SCOPED_TRACE("call " + std::to_string(k) + ": " + fresh->calls[k - 1]);
    const auto repository = makeRepository();
    repository->failAtCall = k;
    EXPECT_THROW(ask(*repository), CallbackFailure);
    TraceCapture trace(4);
    EXPECT_EQ(describe(ask(*repository)), expected);
    for (const std::string& record : trace.take()) EXPECT_NE(record, "4 Found Path in cache");
  }
}

class EventLog : public instrument::in_memory::Listener {
 public:
  void started(const instrument::Handle& handle, instrument::EventId event,
               instrument::TimePoint /*time*/) override {
    events.push_back("start " + handle.name());
    open.push_back(event);
  }
  void stopped(const instrument::Handle& handle, instrument::EventId event,
               instrument::TimePoint /*time*/) noexcept override {
    events.push_back("stop " + handle.name());
    std::erase(open, event);
  }

  std::vector<std::string> events;
  std::vector<instrument::EventId> open;
};

class Instrumentation : public testing::Test {
 protected:
  Instrumentation() { instrument::in_memory::addListener(log); }
  ~Instrumentation() override { instrument::in_memory::removeListener(log); }

  const std::shared_ptr<EventLog> log = std::make_shared<EventLog>();
  const std::vector<std::string> startAndStop{"start VersionRepository::findPath",
                                              "stop VersionRepository::findPath"};
};

TEST_F(Instrumentation, EventIsStoppedOnEveryWayOut) {
  TestRepository repository;
  repository.addLine(u"A", 3);
  const VersionBaseline from = repository.baseline({{u"A", v(1)}});
  const VersionBaseline to = repository.baseline({{u"A", v(3)}});
  repository.failAtCall = 1;
  EXPECT_THROW(repository.findPath(from, to), CallbackFailure);
  EXPECT_EQ(log->events, startAndStop);
  for (const auto& [target, what] : {std::pair(to, "search"), std::pair(to, "cache hit")}) {
    log->events.clear();
    repository.findPath(from, target);
    EXPECT_EQ(log->events, startAndStop) << what;
  }
  log->events.clear();
  repository.findPath(from, from);
  EXPECT_TRUE(log->events.empty()) << "nothing to do: the core is not reached";
  EXPECT_TRUE(log->open.empty());
}

TEST_F(Instrumentation, DisabledHandleStartsNoEvent) {
  instrument::Handle& handle = instrument::controls.getHandle("test event");
  handle.enable(false);
  { const tarn::evolution::diagnostics::ScopedEvent event(handle); }
  EXPECT_TRUE(log->events.empty());
  handle.enable(true);
  {
    const tarn::evolution::diagnostics::ScopedEvent event(handle);
    handle.enable(false);
  }
  EXPECT_EQ(log->events, std::vector<std::string>{"start test event"}) << "disabled while it ran";
}

TEST(Trace, FormsNoTextWhenTheLevelIsOff) {
  using tarn::evolution::diagnostics::trace;
  using tarn::evolution::diagnostics::TraceLevel;
  const auto mustNotRun = [](std::ostream&) { FAIL() << "text was formed"; };
  trace(TraceLevel::Reasoning, mustNotRun);
  TraceCapture capture(8);
  trace(TraceLevel::Reasoning, mustNotRun);
  trace(TraceLevel::CacheStore, [](std::ostream& out) { out << "stored"; });
  EXPECT_EQ(capture.take(), std::vector<std::string>{"8 stored"});
}

TEST(Trace, DropsARecordWhoseTextThrows) {
  using tarn::evolution::diagnostics::trace;
  using tarn::evolution::diagnostics::TraceLevel;
  TraceCapture capture(4);
  EXPECT_THROW(trace(TraceLevel::Reasoning,
                     [](std::ostream& out) {
                       out << "half a record";
                       throw CallbackFailure();
                     }),
               CallbackFailure);
  // While another exception is on its way, a record that forms without a new one is written.
  struct TracingDestructor {
    ~TracingDestructor() {
      trace(TraceLevel::Reasoning, [](std::ostream& out) { out << "unwinding"; });
    }
  };
  try {
    const TracingDestructor tracing;
    throw CallbackFailure();
  } catch (const CallbackFailure&) {
  }
  EXPECT_EQ(capture.take(), std::vector<std::string>{"4 unwinding"});
}

/// Lock calls that fail as told before they succeed.
struct FailingCalls {
  static inline int readersTooMany = 0;
  static inline int error = 0;
  static inline int locked = 0;

  static int lockShared(pthread_rwlock_t* /*lock*/) {
    if (readersTooMany > 0) return --readersTooMany, EAGAIN;
    return lockExclusive(nullptr);
  }
  static int lockExclusive(pthread_rwlock_t* /*lock*/) {
    if (error == 0) ++locked;
    return error;
  }
  static void unlock(pthread_rwlock_t* /*lock*/) { --locked; }
};

TEST(ReaderWriterLock, WaitsOutTooManyReadersAndReportsDeadlock) {
  using tarn::evolution::pathfinder::ReaderWriterLock;
  ReaderWriterLock<FailingCalls> lock;
  FailingCalls::readersTooMany = 3;
  {
    const std::shared_lock shared(lock);
    EXPECT_EQ(FailingCalls::readersTooMany, 0);
    EXPECT_EQ(FailingCalls::locked, 1);
  }
  FailingCalls::error = EDEADLK;
  const auto codeOf = [](const auto& acquire) {
    try {
      acquire();
    } catch (const std::system_error& error) {
      return error.code();
    }
    return std::error_code();
  };
  EXPECT_EQ(codeOf([&] { const std::shared_lock held(lock); }),
            std::errc::resource_deadlock_would_occur);
  EXPECT_EQ(codeOf([&] { const std::unique_lock held(lock); }),
            std::errc::resource_deadlock_would_occur);
  EXPECT_EQ(FailingCalls::locked, 0);
}

TEST(ReaderWriterLock, RealDeadlockIsReported) {
  tarn::evolution::pathfinder::ReaderWriterLock<> lock;
  const std::unique_lock held(lock);
  EXPECT_THROW(lock.lock_shared(), std::system_error);
}

}  // namespace
}  // namespace test
