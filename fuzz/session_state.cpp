#include "session_state.hpp"

#include "expectation.hpp"
#include "platform/exception.hpp"

namespace fuzz {

using namespace test;

namespace {

constexpr std::size_t mostKnown = 24;

Selection selectionOf(const PlainModel& model, const PlainModel::Baseline& baseline) {
  Selection result;
  for (const auto& [name, place] : baseline) result.emplace(name, model.metamodel(place).version);
  return result;
}

}  // namespace

SessionState::SessionState(ByteSource& bytes)
    : bytes_(bytes), catalogue_(bytes), repository_(catalogue_.text()), model_(repository_) {
  repository_.isNoting = false;
  repository_.onCall = [this](const std::string& call) {
    ++calls_;
    if (callsLeft_ > 0 && --callsLeft_ == 0) throw CallbackFailure();
    if (call.starts_with("loadMetamodel ")) ++loads_;
  };
}

void SessionState::check(const std::string& what, const std::string& expected,
                         const std::string& found) const {
  expect(expected == found, [&](auto& out) {
    out << "catalogue:" << catalogue_.text() << "\n"
        << history_ << what << "\nexpected: " << expected << "\nfound:    " << found;
  });
}

/// What an operation of the repository answers; forgets the paths that linking has it forget.
std::string SessionState::outcomeText(const std::function<std::string()>& ask) {
  std::string text;
  try {
    text = ask();
  } catch (const foundation::core::except::IMsgIDException&) {
    text = refused;
  } catch (const CallbackFailure&) {
    text = failed;
    if (loads_ > 0) repository_.invalidatePathfindingCache();  // what failed may have been a load
  }
  if (loads_ > 0) paths_.clear();
  return text;
}

SessionState::Outcome SessionState::outcomeOf(const std::function<Path()>& ask) {
  Outcome outcome;
  outcome.text = outcomeText([&] {
    outcome.path = ask();
    return describe(outcome.path);
  });
  return outcome;
}

/// Gives a repository of the same content to which nothing has been done.
void SessionState::freshly(const std::function<void(TestRepository&)>& use) const {
  TestRepository fresh("");
  fresh.isNoting = false;
  fresh.metamodels = repository_.metamodels;
  fresh.hops = repository_.hops;
  fresh.equivalents = repository_.equivalents;
  use(fresh);
}

VersionBaseline SessionState::in(TestRepository& repository, const Baseline& baseline) {
  if (&repository == &repository_) return known_.at(baseline);
  const auto same = repository.combine(selectionOf(model_, baseline));
  check("combine " + model_.describe(baseline), model_.describe(baseline), describe(same));
  return same.front();
}

std::vector<VersionBaseline> SessionState::in(TestRepository& repository, const Baselines& some) {
  std::vector<VersionBaseline> result;
  for (const Baseline& baseline : some) result.push_back(in(repository, baseline));
  return result;
}

/// One selection of versions is one baseline, whichever operation it comes from.
void SessionState::remember(const VersionBaseline& baseline) {
  const Baseline plain = model_.baselineOf(baseline);
  if (const auto known = known_.find(plain); known != known_.end()) {
    check("identity of " + model_.describe(plain), "same",
          known->second == baseline ? "same" : "different");
  } else if (known_.size() < mostKnown) {
    known_.emplace(plain, baseline);
    listed_.push_back(plain);
  }
}

SessionState::Baselines SessionState::someBaselines() {
  Baselines result;
  const std::size_t choice = bytes_.byte();
  if (listed_.empty() || choice == 0) return result;
  result.push_back(listed_[choice % listed_.size()]);
  if (choice >= 192) result.push_back(listed_[bytes_.below(listed_.size())]);
  return result;
}

/// Some names each at one of its versions, or, seldom, at one that there is not.
Selection SessionState::someSelection() {
  Selection result;
  for (char name = SmallCatalogue::firstName; name < catalogue_.endName(); ++name) {
    const std::size_t choice = bytes_.byte();
    if (choice % 4 == 0) continue;
    const auto& all = catalogue_.versions(name);
    const std::string chosen = choice >= 250 ? "99" : all[choice / 4 % all.size()];
    result.emplace(std::u16string(1, static_cast<char16_t>(name)), version(chosen));
  }
  return result;
}

VersionRepository::Direction SessionState::someDirection() {
  return static_cast<Direction>(bytes_.below(4));
}

std::shared_ptr<LinkedMetamodel> SessionState::someLinked() {
  if (listed_.empty()) return nullptr;
  const auto& metamodels = known_.at(listed_[bytes_.below(listed_.size())]).metamodels;
  const std::map inOrder(metamodels.begin(), metamodels.end());
  return std::next(inOrder.begin(), static_cast<int>(bytes_.below(inOrder.size())))->second;
}

void SessionState::forgetPaths() {
  repository_.invalidatePathfindingCache();
  paths_.clear();
  history_ += "forget\n";
}

}  // namespace fuzz
