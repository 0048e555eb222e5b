#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <boost/exception/get_error_info.hpp>
#include <memory>
#include <set>
#include <thread>

#include "messages/report_exception.hpp"
#include "messages/scoped_event.hpp"
#include "messages/trace.hpp"
#include "platform/in_memory/listener.hpp"
#include "platform/in_memory/logging.hpp"
#include "platform/text.hpp"
#include "support/grouping_locale.hpp"
#include "support/path_finder_errors.hpp"
#include "support/random_run.hpp"
#include "support/test_repository.hpp"
#include "support/trace_capture.hpp"

namespace test {
namespace {

using namespace foundation::core::except;
using tarn::evolution::diagnostics::ScopedEvent;
using tarn::evolution::diagnostics::trace;
using tarn::evolution::diagnostics::TraceLevel;
using Lines = std::vector<std::string>;

using Ask = std::function<std::string(TestRepository&)>;

/// Asks with the k-th callback failing, and then again. Whether the failure arrived; otherwise the
/// answer must not have depended on it.
bool failOnce(TestRepository& repository, std::size_t k, const Ask& ask,
              const std::string& expected) {
  repository.onCall = [&k](const std::string&) {
    if (--k == 0) throw CallbackFailure();
  };
  try {
    EXPECT_EQ(ask(repository), expected);
    return false;
  } catch (const CallbackFailure&) {
    const Lines records = traceOf(4, [&] { EXPECT_EQ(ask(repository), expected); });
    EXPECT_EQ(std::count(records.begin(), records.end(), "4 Found Path in cache"), 0);
    return true;
  }
}

/// Asks a question once for each callback that it takes, with just that callback failing. The
/// callbacks whose failure did not arrive.
std::set<std::string> failAtEachCallback(const std::string& catalogue, const std::string& from,
                                         const std::string& to) {
  const Ask ask = [&](TestRepository& repository) {
    return describe(repository.findPath(selection(from), selection(to)));
  };
  TestRepository fresh(catalogue);
  const std::string expected = ask(fresh);
  std::set<std::string> callbacks;
  for (const std::string& call : fresh.calls) callbacks.insert(call.substr(0, call.find(' ')));
  EXPECT_TRUE(expected != "none" && callbacks.size() == 5U);
  std::set<std::string> survived;
  for (std::size_t k = 1; k <= fresh.calls.size(); ++k) {
    SCOPED_TRACE("call " + std::to_string(k) + ": " + fresh.calls[k - 1]);
    TestRepository repository(catalogue);
    if (!failOnce(repository, k, ask, expected)) survived.insert(fresh.calls[k - 1]);
  }
  return survived;
}

TEST(CallbackFailures, ReachTheCallerIfTheAnswerDependsOnThemAndLeaveTheRepositoryWhole) {
  const std::string small = "Afirst~1 A2 A3 Afirst>2 A2>3 B1:A[1,3) B2:A[3,4) B1>2";
  EXPECT_TRUE(failAtEachCallback(small, "Afirst B1", "B2").empty());
  // With so many more that can move, the exhaustive search hands over. Nothing leads on from where
  // the path ends.
  EXPECT_EQ(
      failAtEachCallback(small + " C1..3 D1..3 E1..3 F1..2 G1..2 H1..2 I1..2 J1..2 K1..2 L1..2",
                         "Afirst B1 C1 D1 E1 F1 G1 H1 I1 J1 K1 L1", "B2 C3 D2 E1 L2"),
      (std::set<std::string>{"findHops A3", "findHops B2", "findHops C3", "findHops D2",
                             "findHops L2", "findMetamodels D[3.0.0, 3.0.1)", "getMetamodel D3"}));
}

class EventLog : public instrument::in_memory::Listener {
 public:
  using Handle = instrument::Handle;
  using Event = instrument::EventId;
  using Time = instrument::TimePoint;

  void started(const Handle& handle, Event event, Time /*time*/) override {
    events.push_back("start " + handle.name());
    last = event;
  }
  void stopped(const Handle& handle, Event event, Time /*time*/) noexcept override {
    events.push_back((event == last ? "stop " : "stop another ") + handle.name());
  }

  Lines events;
  Event last{};
};

class RefusingListener : public EventLog {
 public:
  void started(const Handle& /*handle*/, Event /*event*/, Time /*time*/) override {
    throw CallbackFailure();
  }
};

TEST(Instrumentation, EventIsStoppedOnEveryWayOut) {
  const auto log = std::make_shared<EventLog>();
  instrument::in_memory::addListener(log);
  const auto eventsOf = [&](const std::function<void()>& action) {
    log->events.clear();
    action();
    return log->events;
  };
  const Lines startAndStop{"start VersionRepository::findPath", "stop VersionRepository::findPath"};
  TestRepository repository("A1..3");
  const auto search = [&] { repository.path("A1", "A3"); };
  repository.onCall = [](const std::string& call) {
    if (call.starts_with("findHops")) throw CallbackFailure();
  };
  EXPECT_EQ(eventsOf([&] { EXPECT_THROW(search(), CallbackFailure); }), startAndStop);
  repository.onCall = nullptr;
  EXPECT_EQ(eventsOf(search), startAndStop);
  EXPECT_EQ(eventsOf(search), startAndStop) << "answered from the cache";
  EXPECT_EQ(eventsOf([&] { repository.findPath(Selection(), Selection()); }), Lines());

  instrument::Handle& handle = instrument::controls.getHandle("test");
  const auto disableWhileItRuns = [&] {
    const ScopedEvent event(handle);
    handle.enable(false);
  };
  EXPECT_EQ(eventsOf(disableWhileItRuns), Lines{"start test"});
  EXPECT_EQ(eventsOf(disableWhileItRuns), Lines()) << "disabled before";

  handle.enable(true);
  const auto refusing = std::make_shared<RefusingListener>();
  const auto late = std::make_shared<EventLog>();
  instrument::in_memory::addListener(refusing);
  instrument::in_memory::addListener(late);
  EXPECT_EQ(eventsOf([&] { EXPECT_THROW(ScopedEvent{handle}, CallbackFailure); }),
            (Lines{"start test", "stop test"}));
  EXPECT_EQ(refusing->events, Lines());
  EXPECT_EQ(late->events, Lines());
  instrument::in_memory::removeListener(refusing);
  instrument::in_memory::removeListener(late);
  instrument::in_memory::removeListener(log);
}

TEST(Trace, FormsNoTextWhenTheLevelIsOffAndDropsARecordWhoseTextThrows) {
  const auto mustNotRun = [](std::ostream&) { FAIL() << "text was formed"; };
  const auto failing = [](std::ostream& out) {
    out << "half a record";
    throw CallbackFailure();
  };
  trace(TraceLevel::Reasoning, mustNotRun);
  const Lines records = traceOf(8, [&] {
    trace(TraceLevel::Reasoning, mustNotRun);
    EXPECT_THROW(trace(TraceLevel::CacheStore, failing), CallbackFailure);
    trace(TraceLevel::CacheStore, [](std::ostream& out) { out << "stored"; });
  });
  EXPECT_EQ(records, Lines{"8 stored"});
}

TEST(TraceConcurrency, ARemovedSinkIsShownNothingMore) {
  using namespace foundation::log::in_memory;
  const auto write = [] { trace(TraceLevel::Reasoning, [](std::ostream& out) { out << "text"; }); };
  setEnabledLevels("tarn::evolution::pathfinder", 4);
  std::atomic<bool> isOver{false};
  std::thread writer([&] {
    while (!isOver) write();
  });
  std::atomic<int> late{0};
  for (std::size_t left = RandomRun(200).cases(); left > 0; --left) {
    // Outlives the sink: what is counted after its removal is too late.
    const auto isRemoved = std::make_shared<std::atomic<bool>>(false);
    const RecordSinkId sink = addRecordSink([&late, isRemoved](const RecordView& record) {
      if (*isRemoved || record.text != "text") ++late;
    });
    std::this_thread::yield();
    removeRecordSink(sink);
    *isRemoved = true;
    EXPECT_EQ(isRemoved.use_count(), 1) << "the function is destroyed";
    removeRecordSink(sink);
  }
  isOver = true;
  writer.join();
  EXPECT_EQ(late, 0);

  int shown = 0;
  int others = 0;
  const RecordSinkId other = addRecordSink([&](const RecordView&) { ++others; });
  RecordSinkId self{};
  self = addRecordSink([&shown, &self](const RecordView&) {
    removeRecordSink(self);
    ++shown;
  });
  write();
  write();
  EXPECT_EQ(shown, 1) << "a sink may remove itself";
  EXPECT_EQ(others, 2);
  removeRecordSink(other);
  setEnabledLevels("tarn::evolution::pathfinder", 0);
}

/// Every kind of record and text with numbers in it, of two digits at least.
Lines everyText() {
  TestRepository repository("A10..25 B10:B11 B11:B10 C10 C10>77 D10:D11");
  for (char name = 'E'; name <= 'H'; ++name) repository.add(std::string(1, name) + "10..11");
  Lines texts = traceOf(4 | 8, [&] {
    repository.path("A10 E10 F10 G10 H10", "A25");
    repository.path("A10 E10 F10 G10 H10", "A25");
  });
  texts.push_back(messageOf<std::logic_error>([&] { repository.baselines("B10"); }));
  texts.push_back(messageOf<std::logic_error>([&] { repository.steps("C10"); }));
  texts.push_back(messageOf<UnknownVersion>([&] { repository.baselines("A2024.10.11"); }));
  texts.push_back(dumpLockstepHop({{u"A", Hop(u"A", v(10), v(11), false)}}));
  return texts;
}

TEST(Texts, HaveTheirNumbersInNoLocalesWay) {
  const Lines expected = everyText();
  EXPECT_GT(expected.size(), 100U);
  const GlobalGrouping grouping;
  EXPECT_EQ(everyText(), expected);
}

TEST(Texts, OfErrorsGoOnAfterANulAndComeToAnEnd) {
  using namespace std::string_literals;
  const std::u16string name = u"n\0ame"s;
  TestRepository repository("");
  const auto needs = [&](std::uint64_t number) {
    return Dependency(name, VersionRange::singleVersion(v(number)));
  };
  repository.metamodels.emplace_back(name, u"1\0"s, std::vector<Dependency>());
  repository.hops.emplace_back(name, u"1\0"s,
                               u"\0"
                               "2"s,
                               false);
  const VersionBaseline baseline = repository.combine(Selection{{name, u"1\0"s}}).at(0);
  EXPECT_EQ(messageOf<std::logic_error>([&] { repository.getStepsFrom(baseline, forward); }),
            "The repository offers a hop to version \u24002 of metamodel \"n\u2400ame\" but cannot "
            "return that version.");
  try {
    repository.combine(Selection{{name, u"\0"s}});
    FAIL() << "no exception";
  } catch (const IMsgIDException& error) {
    EXPECT_STREQ(error.what(), "There is no version \u2400 of metamodel \"n\u2400ame\".");
    EXPECT_EQ(error.GetUnicodeMessageTxt(), u"There is no version \0 of metamodel \"n\0ame\"."s);
  }

  for (std::uint64_t number = 1; number <= 200; ++number) {
    repository.metamodels.emplace_back(name, v(number), std::vector{needs(number % 200 + 1)});
  }
  const auto cycle = [&] { repository.getLinkedMetamodels(name, v(1)); };
  const std::string brief = messageOf<std::logic_error>(cycle);
  EXPECT_TRUE(
      brief.starts_with("Metamodels depend on one another in a cycle: n\u2400ame@1.0.0 needs "));
  EXPECT_TRUE(brief.ends_with(" needs 190 more, the last of which needs n\u2400ame@1.0.0"))
      << brief;
  for (Metamodel& metamodel : repository.metamodels) {
    metamodel.name = std::u16string(1000, u'\u20ac');
    for (Dependency& dependency : metamodel.dependencies) dependency.name = metamodel.name;
  }
  const std::string cut = messageOf<std::logic_error>(
      [&] { repository.getLinkedMetamodels(repository.metamodels.back()); });
  EXPECT_LT(cut.size(), 2000U);
  EXPECT_NE(cut.find("\u20ac...@"), std::string::npos) << "cut between characters: " << cut;
}

TEST(Messages, ReadAsSentencesAndAreCaughtByEveryBase) {
  const Conflict conflict{tarn_evo::messages::ConflictingDependencies()};
  EXPECT_EQ(conflict.GetID(), "tarn_evo:messages/ConflictingDependencies");
  EXPECT_TRUE(conflict.GetBaseMsgIDObj().args.empty());
  EXPECT_NE(std::string(conflict.what()).find("dependencies"), std::string::npos);

  const UnknownVersion unknown(
      tarn_evo::messages::InvalidFamilyVersion(std::u16string(u"Fr\u00fchling %1"), u"\u00c4"));
  const std::unique_ptr<IException> copy(unknown.clone());
  EXPECT_THROW(copy->rethrow(), IMsgIDException);
  EXPECT_THROW(copy->rethrow(), std::exception);
  EXPECT_THROW(copy->rethrow(), boost::exception);
  try {
    copy->rethrow();
  } catch (const UnknownVersion& caught) {
    EXPECT_NE(&caught, copy.get());
    EXPECT_EQ(caught.GetBaseMsgIDObj().args, unknown.GetBaseMsgIDObj().args);
    EXPECT_EQ(caught.GetID(), "tarn_evo:messages/InvalidFamilyVersion");
    const std::u16string text = u"There is no version Fr\u00fchling %1 of metamodel \"\u00c4\".";
    EXPECT_EQ(caught.GetUnicodeMessageTxt(), text);
    EXPECT_EQ(caught.what(), fl::i18n::ustring_to_utf8(text));
    EXPECT_EQ(boost::get_error_info<boost::throw_line>(caught), nullptr);
    EXPECT_EQ(boost::get_error_info<boost::throw_file>(caught), nullptr);
  }
}

}  // namespace
}  // namespace test
