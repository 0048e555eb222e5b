#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "catalogue/import/source_files.hpp"

namespace tarn::evolution::catalogue {

/// The cells of a row; line breaks within quotes belong to a cell.
struct TableRow {
  std::size_t line;
  std::vector<std::string> cells;
};

/// Reads comma-separated values as RFC 4180 has them. Cells are separated by what separates those
/// of the first row: commas, semicolons or tabs. Blanks around a cell without quotes do not count,
/// and neither do rows without content. Throws CatalogueError, with file and line, for a quotation
/// that does not end or has something after it.
void readTableRows(SourceFile& file, const std::function<void(const TableRow& row)>& use);

/// A table whose first row names its columns, in any case.
class TableHead {
 public:
  /// Throws CatalogueError for a column that stands twice and is not in `repeatable`.
  TableHead(const TableRow& row, const SourceFile& file, const std::string& repeatable = {});

  bool has(const std::string& column) const;
  const std::vector<std::string>& columns() const noexcept { return columns_; }

  /// The cell of a column, empty where the row ends before it or there is no such column.
  std::string cell(const TableRow& row, const std::string& column) const;

  /// The same, of a cell that must not be empty.
  std::string neededCell(const TableRow& row, const std::string& column,
                         const SourceFile& file) const;

 private:
  std::vector<std::string> columns_;
};

}  // namespace tarn::evolution::catalogue
