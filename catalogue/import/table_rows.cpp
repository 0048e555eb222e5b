#include "catalogue/import/table_rows.hpp"

#include <algorithm>

namespace tarn::evolution::catalogue {

namespace {

constexpr int byteOrderMark[] = {0xEF, 0xBB, 0xBF};

std::string withoutBlanks(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") + 1 - begin);
}

class RowReader {
 public:
  explicit RowReader(SourceFile& file) : file_(file) {}

  void readAll(const std::function<void(const TableRow& row)>& use) {
    skipByteOrderMark();
    while (file_.peek() != EOF) {
      const TableRow row = readRow();
      const bool isEmpty = std::all_of(row.cells.begin(), row.cells.end(),
                                       [](const std::string& cell) { return cell.empty(); });
      if (!isEmpty) use(row);
    }
  }

 private:
  void skipByteOrderMark() {
    for (const int byte : byteOrderMark) {
      if (file_.peek() != byte) return;
      file_.skip();
    }
  }

  TableRow readRow() {
    TableRow row{file_.line(), {}};
    for (;;) {
      row.cells.push_back(readCell());
      const int end = file_.peek();
      if (end == EOF) return row;
      file_.skip();
      if (end == '\n') return row;
    }
  }

  std::string readCell() {
    std::string cell;
    for (int next = file_.peek(); !isEnd(next); next = file_.peek()) {
      if (next == '"' && withoutBlanks(cell).empty()) return readQuoted();
      cell += static_cast<char>(next);
      file_.skip();
    }
    return withoutBlanks(cell);
  }

  /// The first row tells the separator: the first sign that may be one.
  bool isEnd(int next) {
    if (next == EOF || next == '\n') {
      if (separator_ == 0) separator_ = ',';
      return true;
    }
    if (separator_ == 0 && (next == ',' || next == ';' || next == '\t')) separator_ = next;
    return next == separator_;
  }

  std::string readQuoted() {
    const SourcePlace begin = file_.place();
    std::string cell;
    file_.skip();
    for (int next = file_.peek();; next = file_.peek()) {
      if (next == EOF) begin.fail("the quotation does not end");
      file_.skip();
      if (next == '"') {
        if (file_.peek() != '"') break;
        file_.skip();
      }
      cell += static_cast<char>(next);
    }
    for (int next = file_.peek(); !isEnd(next); next = file_.peek()) {
      if (next != ' ' && next != '\r') file_.place().fail("after a quotation the cell must end");
      file_.skip();
    }
    return cell;
  }

  SourceFile& file_;
  int separator_ = 0;  // 0 until it is known
};

}  // namespace

void readTableRows(SourceFile& file, const std::function<void(const TableRow& row)>& use) {
  RowReader(file).readAll(use);
}

TableHead::TableHead(const TableRow& row, const SourceFile& file, const std::string& repeatable) {
  for (std::string column : row.cells) {
    std::transform(column.begin(), column.end(), column.begin(), [](char character) {
      return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                  : character;
    });
    if (has(column) && column != repeatable) {
      file.place(row.line).fail("the column \"" + column + "\" stands twice");
    }
    columns_.push_back(column);
  }
}

bool TableHead::has(const std::string& column) const {
  return std::find(columns_.begin(), columns_.end(), column) != columns_.end();
}

std::string TableHead::cell(const TableRow& row, const std::string& column) const {
  const auto found = std::find(columns_.begin(), columns_.end(), column);
  const auto index = static_cast<std::size_t>(found - columns_.begin());
  return index < row.cells.size() ? row.cells[index] : std::string();
}

std::string TableHead::neededCell(const TableRow& row, const std::string& column,
                                  const SourceFile& file) const {
  std::string text = cell(row, column);
  if (text.empty()) file.place(row.line).fail("the column \"" + column + "\" is empty here");
  return text;
}

}  // namespace tarn::evolution::catalogue
