#include "support/forgetful_disk.hpp"

#include <sys/stat.h>

#include <algorithm>

namespace test {

namespace {

using Kind = FileCall::Kind;

constexpr std::size_t sector = 512;

unsigned long inodeOf(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

void put(std::string& content, std::size_t offset, std::string_view bytes) {
  if (content.size() < offset + bytes.size()) content.resize(offset + bytes.size());
  content.replace(offset, bytes.size(), bytes);
}

}  // namespace

/// What is certain, and what is not yet, at some time.
struct ForgetfulDisk::Left {
  std::map<std::string, File> names;
  std::map<File, std::string> contents;
  std::vector<Name> looseNames;
  std::map<File, std::vector<std::variant<Write, Resize>>> looseContents;

  void settle(const Name& step) {
    if (!step.formerName.empty()) names.erase(step.formerName);
    names.erase(step.name);
    if (step.file >= 0) names[step.name] = step.file;
  }
  void settle(const Write& step) { put(contents[step.file], step.offset, step.bytes); }
  void settle(const Resize& step) { contents[step.file].resize(step.size); }

  void note(const Name& step) { looseNames.push_back(step); }
  void note(const Write& step) { looseContents[step.file].push_back(step); }
  void note(const Resize& step) { looseContents[step.file].push_back(step); }
  void note(const SyncFile& step) {
    for (const auto& loose : looseContents[step.file]) {
      std::visit([&](const auto& change) { settle(change); }, loose);
    }
    looseContents.erase(step.file);
  }
  void note(const SyncFolder& /*step*/) {
    for (const Name& loose : looseNames) settle(loose);
    looseNames.clear();
  }
};

ForgetfulDisk::ForgetfulDisk(const std::filesystem::path& folder) : FileCallWatch(folder) {
  for (const auto& [name, content] : readDisk(folder)) {
    files_[inodeOf(folder / name)] = count_;
    firstNames_[name] = count_++;
    firstContents_.push_back(content);
  }
  names_ = firstNames_;
}

ForgetfulDisk::File ForgetfulDisk::fileOf(int descriptor) const {
  struct stat status {};
  fstat(descriptor, &status);
  const auto found = files_.find(status.st_ino);
  return found == files_.end() ? -1 : found->second;
}

int ForgetfulDisk::before(const FileCall& call) {
  if (call.kind == Kind::Make) isNew_ = inodeOf(call.path) == 0;
  return 0;
}

void ForgetfulDisk::after(const FileCall& call, long result) {
  switch (call.kind) {
    case Kind::Make:
      if (!isNew_) return;
      files_[inodeOf(call.path)] = count_;
      names_[nameIn(call.path)] = count_;
      steps_.emplace_back(Name{nameIn(call.path), count_++});
      break;
    case Kind::Write:
      steps_.emplace_back(
          Write{fileOf(call.descriptor), static_cast<std::size_t>(call.offset),
                std::string(call.bytes.substr(0, static_cast<std::size_t>(result)))});
      break;
    case Kind::Truncate:
      steps_.emplace_back(Resize{fileOf(call.descriptor), static_cast<std::size_t>(call.offset)});
      break;
    case Kind::Sync:
      if (call.path == watchedFolder()) {
        steps_.emplace_back(SyncFolder{});
      } else {
        steps_.emplace_back(SyncFile{fileOf(call.descriptor)});
      }
      break;
    case Kind::Rename:
      steps_.emplace_back(
          Name{nameIn(call.target), names_.at(nameIn(call.path)), nameIn(call.path)});
      names_[nameIn(call.target)] = names_.at(nameIn(call.path));
      names_.erase(nameIn(call.path));
      break;
    case Kind::Unlink:
      steps_.emplace_back(Name{nameIn(call.path), -1});
      names_.erase(nameIn(call.path));
      break;
    default:
      break;
  }
}

Disk ForgetfulDisk::leftAfter(std::size_t steps, Rest rest, Random& random) const {
  Left left;
  left.names = firstNames_;
  for (std::size_t i = 0; i < firstContents_.size(); ++i) {
    left.contents[static_cast<File>(i)] = firstContents_[i];
  }
  std::for_each_n(steps_.begin(), steps, [&](const Step& step) {
    std::visit([&](const auto& change) { left.note(change); }, step);
  });
  const auto isLeft = [&](Rest whole) {
    return rest == Rest::Some ? random() % 2 == 0 : rest == Rest::All || rest == whole;
  };
  for (const Name& loose : left.looseNames) {
    const bool isLast = rest == Rest::LastNameOnly && &loose == &left.looseNames.back();
    if (isLast || isLeft(Rest::NamesOnly)) left.settle(loose);
  }
  for (const auto& [file, changes] : left.looseContents) {
    for (const auto& change : changes) {
      if (const auto* resize = std::get_if<Resize>(&change)) {
        if (isLeft(Rest::ContentOnly)) left.settle(*resize);
        continue;
      }
      const auto& write = std::get<Write>(change);
      for (std::size_t at = 0; at < write.bytes.size(); at += sector) {
        if (isLeft(Rest::ContentOnly)) {
          left.settle(Write{file, write.offset + at, write.bytes.substr(at, sector)});
        }
      }
    }
  }
  Disk disk;
  for (const auto& [name, file] : left.names) disk[name] = left.contents[file];
  return disk;
}

}  // namespace test
