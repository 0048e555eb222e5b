#include "product_graph.hpp"

#include <boost/graph/dijkstra_shortest_paths_no_color_map.hpp>
#include <limits>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pathfinder/search/step_weight.hpp"

namespace bench {

using tarn::evolution::catalogue::CatalogueContent;
using tarn::evolution::catalogue::CatalogueMetamodel;
using tarn::evolution::catalogue::Selection;
using tarn::evolution::pathfinder::Dependency;
using tarn::evolution::pathfinder::Hop;
using tarn::evolution::pathfinder::VersionId;

namespace {

using VertexIndex = std::uint32_t;

/// A selection as a mixed-radix number, the digits being positions among a name's versions.
using Code = std::uint64_t;

struct Move {
  std::size_t target;
  std::uint64_t weight;  ///< zero for staying
};

struct Version {
  const CatalogueMetamodel* metamodel;
  std::vector<Move> moves;  ///< staying first
};

struct Name {
  std::vector<Version> versions;
  Code place = 1;  ///< what its digit counts
};

/// The catalogue by numbers. Names ascend.
class Table {
 public:
  explicit Table(const Catalogue& catalogue) : content_(catalogue.content()) {
    for (const CatalogueMetamodel& metamodel : content_.metamodels) {
      Name& name = names_[metamodel.descriptor.name];
      name.versions.push_back({&metamodel, {{name.versions.size(), 0}}});
    }
    Code place = 1;
    for (auto& [text, name] : names_) {
      name.place = place;
      place *= name.versions.size();
    }
    for (const Hop& hop : content_.hops) addHop(hop);
    for (const auto& [text, name] : names_) ordered_.push_back(&name);
  }

  const std::vector<const Name*>& names() const { return ordered_; }

  /// The code of a selection that names everything.
  Code codeOf(const Selection& selection) const {
    Code code = 0;
    for (const auto& [text, name] : names_) code += name.place * find(name, selection.at(text));
    return code;
  }

  /// Whether every dependency of every selected version is met.
  bool isConsistent(Code code) const {
    for (const Name* name : ordered_) {
      for (const Dependency& need : selected(*name, code).descriptor.dependencies) {
        const auto other = names_.find(need.name);
        if (!need.range.includes(selected(other->second, code).descriptor.version)) return false;
      }
    }
    return true;
  }

  static std::size_t digit(const Name& name, Code code) {
    return code / name.place % name.versions.size();
  }

 private:
  static const CatalogueMetamodel& selected(const Name& name, Code code) {
    return *name.versions[digit(name, code)].metamodel;
  }

  static std::size_t find(const Name& name, const VersionId& version) {
    std::size_t position = 0;
    while (!(name.versions.at(position).metamodel->descriptor.version == version)) ++position;
    return position;
  }

  void addHop(const Hop& hop) {
    Name& name = names_.at(hop.name);
    name.versions[find(name, hop.from)].moves.push_back(
        {find(name, hop.to), tarn::evolution::pathfinder::hopWeight(hop.expensive)});
  }

  const CatalogueContent content_;
  std::map<std::u16string, Name> names_;
  std::vector<const Name*> ordered_;
};

/// Lists vertices and edges.
class GraphBuilder {
 public:
  explicit GraphBuilder(const Table& table) : table_(table) {
    const Name& last = *table.names().back();
    const Code end = last.place * last.versions.size();
    for (Code code = 0; code < end; ++code) {
      if (table.isConsistent(code))
        vertices_.emplace(code, static_cast<VertexIndex>(codes_.size()));
      if (vertices_.size() > codes_.size()) codes_.push_back(code);
    }
    for (VertexIndex vertex = 0; vertex < codes_.size(); ++vertex) {
      addEdges(vertex, 0, codes_[vertex], 0);
    }
  }

  std::optional<VertexIndex> vertexOf(Code code) const {
    const auto found = vertices_.find(code);
    if (found == vertices_.end()) return std::nullopt;
    return found->second;
  }

  std::size_t vertexCount() const { return codes_.size(); }

  std::vector<std::pair<VertexIndex, VertexIndex>> edges;  // by ascending source
  std::vector<std::uint64_t> weights;                      // of the edges

 private:
  /// Adds the edges from `source` that take some of the moves of the names from `place` on, after
  /// those that led to `code` and weigh `hopWeights`.
  void addEdges(VertexIndex source, std::size_t place, Code code, std::uint64_t hopWeights) {
    if (place == table_.names().size()) {
      addEdge(source, code, hopWeights);
      return;
    }
    const Name& name = *table_.names()[place];
    const std::size_t position = Table::digit(name, code);
    for (const Move& move : name.versions[position].moves) {
      const Code moved = code + name.place * (move.target - position);  // may wrap on the way
      addEdges(source, place + 1, moved, hopWeights + move.weight);
    }
  }

  void addEdge(VertexIndex source, Code code, std::uint64_t hopWeights) {
    const auto target = vertexOf(code);
    if (!target || *target == source) return;
    edges.emplace_back(source, *target);
    weights.push_back(tarn::evolution::pathfinder::stepWeight(hopWeights));
  }

  const Table& table_;
  std::vector<Code> codes_;
  std::unordered_map<Code, VertexIndex> vertices_;
};

}  // namespace

ProductGraph::ProductGraph(const Catalogue& catalogue) {
  const Table table(catalogue);
  const GraphBuilder builder(table);
  std::vector<Edge> edges;
  edges.reserve(builder.weights.size());
  for (const std::uint64_t weight : builder.weights) edges.push_back({weight});
  graph_ = Graph(boost::edges_are_sorted, builder.edges.begin(), builder.edges.end(), edges.begin(),
                 static_cast<VertexIndex>(builder.vertexCount()));
  source_ = builder.vertexOf(table.codeOf(catalogue.question()->from));
  target_ = builder.vertexOf(table.codeOf(catalogue.question()->to));
}

Weight ProductGraph::leastWeight() const {
  if (!source_ || !target_) return std::nullopt;
  std::vector<std::uint64_t> weights(vertexCount());
  const auto weightMap =
      boost::make_iterator_property_map(weights.begin(), get(boost::vertex_index, graph_));
  dijkstra_shortest_paths_no_color_map(
      graph_, *source_, boost::weight_map(get(&Edge::weight, graph_)).distance_map(weightMap));
  const std::uint64_t weight = weights[*target_];
  if (weight == std::numeric_limits<std::uint64_t>::max()) return std::nullopt;
  return weight;
}

bool isProductSmall(const Catalogue& catalogue) {
  std::map<std::u16string, double> moves;
  for (const auto& metamodel : catalogue.metamodels()) ++moves[metamodel.descriptor.name];
  for (const Hop& hop : catalogue.hops()) ++moves[hop.name];
  double combinations = 1;
  for (const auto& [name, count] : moves) combinations *= count;
  return combinations < 2.5e6;
}

}  // namespace bench
