#include "support/test_question.hpp"

#include <algorithm>
#include <boost/core/demangle.hpp>
#include <map>
#include <typeinfo>

#include "platform/exception.hpp"
#include "support/items.hpp"

namespace test {

namespace {

std::u16string nameAt(const std::string& entry, std::size_t place) {
  return std::u16string(1, static_cast<char16_t>(entry[place]));
}

/// The alternatives of one end, each as its entries.
std::vector<std::vector<std::string>> alternativesIn(const std::string& end) {
  std::vector<std::vector<std::string>> result(1);
  for (const std::string& entry : itemsIn(end)) {
    if (entry == ",") {
      result.emplace_back();
    } else {
      result.back().push_back(entry);
    }
  }
  return result;
}

VersionBaseline putTogether(TestRepository& repository, const std::vector<std::string>& entries) {
  VersionBaseline result;
  for (const std::string& entry : entries) {
    if (entry == "*") continue;
    const std::size_t at = entry.find('@');
    const std::size_t slash = entry.find('/');
    auto& held = result.metamodels[nameAt(entry, at == std::string::npos ? 0 : at + 1)];
    if (entry.ends_with('-')) continue;
    const auto& linked = repository.getLinkedMetamodels(
        nameAt(entry, 0), version(entry.substr(1, std::min(at, slash) - 1)));
    held = linked.at(slash == std::string::npos ? 0 : std::stoul(entry.substr(slash + 1)) - 1);
  }
  return result;
}

}  // namespace

QuestionText::QuestionText(const std::string& text) {
  std::istringstream in(text);
  for (std::string* part : {&catalogue, &from, &to, &direction, &beside}) {
    std::getline(in, *part, '|');
  }
}

VersionRepository::Direction QuestionText::askedDirection() const {
  if (direction.find("forward") != std::string::npos) return forward;
  return direction.find("backward") != std::string::npos ? backward : anyDirection;
}

QuestionText QuestionText::withBesideInside() const {
  return withInside(beside);
}

QuestionText QuestionText::withFirstInside(const std::set<std::string>& kinds) const {
  std::map<std::string, std::string> firstOfKind;
  for (const std::string& item : itemsIn(beside)) {
    if (!kinds.contains(item.substr(1))) continue;
    std::string& first = firstOfKind.try_emplace(item.substr(1), item).first->second;
    first = std::min(first, item);
  }
  std::string some;
  for (const auto& [kind, first] : firstOfKind) some += first + " ";
  return withInside(some);
}

QuestionText QuestionText::withInside(const std::string& some) const {
  QuestionText result = *this;
  const bool isBackward = askedDirection() == backward;
  const std::string before = isBackward ? "2" : "1";
  const std::string after = isBackward ? "1" : "2";
  std::string atSource;
  std::string atTarget;
  for (const std::string& item : itemsIn(some)) {
    const std::string name = " " + item.substr(0, 1);
    for (const std::string& version : {before, after})
      result.catalogue.append(name).append(version);
    result.catalogue.append(name).append(before).append(">").append(after);
    atSource.append(name).append(before);
    if (item.size() > 1) atTarget.append(name).append(item[1] == '>' ? after : before);
  }
  const auto extend = [](std::string& end, const std::string& more) {
    std::string extended;
    for (const auto& alternative : alternativesIn(end)) {
      extended += (extended.empty() ? "" : " , ") + joined(alternative) + more;
    }
    end = extended;
  };
  extend(result.from, atSource);
  extend(result.to, atTarget);
  return result;
}

TestQuestion::TestQuestion(const QuestionText& text)
    : repository(text.catalogue), direction(text.askedDirection()) {
  try {
    former_ = std::make_unique<TestRepository>(text.catalogue);
    sources = baselinesOf(text.from);
    targets = baselinesOf(text.to);
  } catch (const CallbackFailure&) {
    sources.clear();
  } catch (const std::exception&) {
    sources.clear();
  }
  repository.calls.clear();
}

std::vector<VersionBaseline> TestQuestion::baselinesOf(const std::string& alternatives) {
  std::vector<VersionBaseline> result;
  for (std::vector<std::string> entries : alternativesIn(alternatives)) {
    if (entries.empty()) continue;
    if (entries[0] == "*") {
      result.push_back(putTogether(repository, entries));
      continue;
    }
    const bool isFormer = entries[0] == "^";
    if (isFormer) entries.erase(entries.begin());
    TestRepository& maker = isFormer ? *former_ : repository;
    for (const auto& baseline : maker.combine(selection(joined(entries)))) {
      result.push_back(baseline);
    }
  }
  return result;
}

std::string outcomeOf(const std::function<Path()>& ask) {
  try {
    return describe(ask());
  } catch (const CallbackFailure& failure) {
    return "throws at " + failure.call;
  } catch (const foundation::core::except::IMsgIDException& error) {
    return "throws " + error.GetID();
  } catch (const std::exception& error) {
    return "throws " + boost::core::demangle(typeid(error).name()) + ": " + error.what();
  }
}

}  // namespace test
