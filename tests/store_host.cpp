// A program that uses stores as it is told, line by line, and answers each line with one.
#include <sqlite3.h>
#include <unistd.h>

#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "catalogue/utf16.hpp"

namespace {

using namespace tarn::evolution::catalogue;

class Host {
 public:
  Host() = default;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { closeAll(); }

  std::string obey(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    std::string first;
    std::string second;
    words >> verb >> first >> second;
    if (verb == "user")
      return isOk(geteuid() != 0 || setuid(static_cast<uid_t>(std::stoul(first))) == 0);
    if (verb == "open") repositories_.push_back(openCatalogue(first));
    if (verb == "count") return countIn(*repositories_.at(std::stoul(first)));
    if (verb == "close") repositories_.clear();
    if (verb == "read") return countIn(*openCatalogue(first));
    if (verb == "import") importCatalogue(first, second);
    if (verb == "add") addToStore(first, second);
    if (verb == "remove") removeFromStore(first, {{toUtf16(second), {}}});
    if (verb == "export") exportCatalogue(first, second);
    if (verb == "sql") return runSql(first, line.substr(line.find(second)));
    if (verb == "unsql") closeAll();
    return "ok";
  }

 private:
  static std::string isOk(bool isDone) { return isDone ? "ok" : "error: that cannot be done"; }

  static std::string countIn(BrowsableRepository& repository) {
    std::size_t count = 0;
    for (const std::u16string& name : repository.listNames()) {
      count += repository.listMetamodels(name).size();
    }
    return std::to_string(count);
  }

  /// As another program, which knows nothing of this library and keeps the file open.
  std::string runSql(const std::string& file, const std::string& statements) {
    sqlite3*& connection = connections_[file];
    if (connection == nullptr) sqlite3_open(file.c_str(), &connection);
    std::string result = "ok";
    const auto take = [](void* to, int /*count*/, char** values, char** /*names*/) {
      *static_cast<std::string*>(to) = values[0];
      return 0;
    };
    const int code = sqlite3_exec(connection, statements.c_str(), take, &result, nullptr);
    if (code == SQLITE_OK) return result;
    result = std::string("error: ") + sqlite3_errmsg(connection);
    closeAll();
    return result;
  }

  void closeAll() {
    for (const auto& [file, connection] : connections_) sqlite3_close(connection);
    connections_.clear();
  }

  std::vector<std::unique_ptr<BrowsableRepository>> repositories_;
  std::map<std::string, sqlite3*> connections_;
};

}  // namespace

int main() {
  Host host;
  for (std::string line; std::getline(std::cin, line);) {
    try {
      std::cout << host.obey(line) << std::endl;
    } catch (const std::exception& error) {
      std::cout << "error: " << error.what() << std::endl;
    }
  }
}
