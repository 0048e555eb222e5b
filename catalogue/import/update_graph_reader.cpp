// Update graphs, as clusters ask their update service for them: a graph is a metamodel, named as
// its file is. "edges" are pairs of indices of nodes; "conditionalEdges" are pairs of versions,
// with the risks of going there.
#include <optional>
#include <set>
#include <utility>

#include "catalogue/import/documents.hpp"
#include "catalogue/import/readers.hpp"

namespace tarn::evolution::catalogue {

namespace {

class GraphReader {
 public:
  GraphReader(const SourceNode& graph, ForeignPackage& package, ImportLog& log)
      : graph_(graph), package_(package), log_(log) {}

  void read() {
    for (const SourceNode& node : graph_.field("nodes").elements()) {
      indices_.emplace_back();
      log_.attempt([&] {
        const std::string version = node.textField("version");
        indices_.back() = package_.versions().size();
        package_.addVersion(version, node.place());
      });
    }
    readConditionalEdges();
    for (const SourceNode& edge : graph_.field("edges").elements()) {
      log_.attempt([&] { readEdge(edge); });
    }
  }

 private:
  using Ends = std::pair<std::size_t, std::size_t>;

  /// An edge that is both is a conditional one.
  void readEdge(const SourceNode& edge) {
    const std::vector<SourceNode> ends = edge.elements();
    if (ends.size() != 2) edge.fail("must be a pair of indices of nodes");
    const auto from = nodeAt(ends[0]);
    const auto to = nodeAt(ends[1]);
    if (from && to && !conditional_.contains({*from, *to})) package_.addHop(*from, *to, false);
  }

  /// Nothing for a node that was left out.
  std::optional<std::size_t> nodeAt(const SourceNode& end) const {
    const std::uint64_t index = end.asIndex();
    if (index >= indices_.size()) {
      end.fail("there is no node " + std::to_string(index));
    }
    return indices_[index];
  }

  void readConditionalEdges() {
    for (const SourceNode& group : graph_.elements("conditionalEdges")) {
      std::string note;
      log_.attempt([&] { note = risksOf(group); });
      for (const SourceNode& edge : group.field("edges").elements()) {
        log_.attempt([&] {
          const Ends ends{nodeOf(edge.field("from")), nodeOf(edge.field("to"))};
          conditional_.insert(ends);
          package_.addHop(ends.first, ends.second, true, note);
        });
      }
    }
  }

  /// A line for each: "Name: message (link)", as much of it as there is.
  static std::string risksOf(const SourceNode& group) {
    std::string note;
    for (const SourceNode& risk : group.elements("risks")) {
      std::string line = risk.optionalText("name");
      const std::string message = risk.optionalText("message");
      const std::string url = risk.optionalText("url");
      if (!message.empty()) line.append(line.empty() ? "" : ": ").append(message);
      if (!url.empty()) line.append(line.empty() ? url : " (" + url + ")");
      addNote(line, note);
    }
    return note;
  }

  std::size_t nodeOf(const SourceNode& version) const {
    const auto found = package_.find(version.asText());
    if (!found) version.fail("there is no node of the version " + version.asText());
    return *found;
  }

  const SourceNode& graph_;
  ForeignPackage& package_;
  ImportLog& log_;
  std::vector<std::optional<std::size_t>> indices_;  // of versions, by nodes
  std::set<Ends> conditional_;
};

}  // namespace

ForeignCatalogue readUpdateGraphs(const Reading& reading) {
  ForeignCatalogue catalogue;
  for (const auto& source : reading.sources) {
    for (const auto& path : filesOf(source, {".json"})) {
      SourceFile file(path, reading.advance);
      const std::string name = path.stem().string();
      if (catalogue.contains(name)) file.place().fail("there is another graph of this name");
      bool isFirst = true;
      readJsonDocuments(file, [&](const SourceNode& document) {
        if (!std::exchange(isFirst, false)) document.fail("there is a second graph in the file");
        GraphReader(document, catalogue[name], reading.log).read();
      });
    }
  }
  return catalogue;
}

}  // namespace tarn::evolution::catalogue
