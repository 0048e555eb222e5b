// What the path finder tells a host about its work: records of its reasoning, and events with their
// times.
#include <iostream>
#include <memory>

#include "pathfinder/version_repository.hpp"
#include "platform/in_memory/listener.hpp"
#include "platform/in_memory/logging.hpp"

using namespace tarn::evolution::pathfinder;

namespace {

/// One metamodel with two versions.
class Shapes : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (const SemVer& version : {SemVer{1, 0, 0}, SemVer{2, 0, 0}}) {
      const Metamodel shape(u"shape", version, {});
      if (name == shape.name && includes(range, shape)) result.push_back(shape);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    if (from == SemVer{1, 0, 0}) result.emplace_back(name, from, SemVer{2, 0, 0}, false);
  }
};

/// Prints the events. A real listener would measure the time between them.
class EventPrinter : public instrument::in_memory::Listener {
 public:
  void started(const instrument::Handle& handle, instrument::EventId /*event*/,
               instrument::TimePoint /*time*/) override {
    std::cout << "started " << handle.name() << "\n";
  }
  void stopped(const instrument::Handle& handle, instrument::EventId /*event*/,
               instrument::TimePoint /*time*/) noexcept override {
    std::cout << "stopped " << handle.name() << "\n";
  }
};

foundation::log::in_memory::RecordSinkId showRecords() {
  const auto sink = foundation::log::in_memory::addRecordSink(
      [](const foundation::log::in_memory::RecordView& record) {
        std::cout << record.channel << " [" << record.severity << "] " << record.text << "\n";
      });
  foundation::log::in_memory::setEnabledLevels("tarn::evolution::pathfinder", 4 | 8);
  return sink;
}

}  // namespace

int main() {
  const auto sink = showRecords();
  const auto printer = std::make_shared<EventPrinter>();
  instrument::in_memory::addListener(printer);
  Shapes repository;
  repository.findPath({{u"shape", SemVer{1, 0, 0}}}, {{u"shape", SemVer{2, 0, 0}}});
  instrument::in_memory::removeListener(printer);
  foundation::log::in_memory::removeRecordSink(sink);
}
