// A rectangular table of texts, addressed (row, column) from 0.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace kestrana::core {

class TextTable {
 public:
  TextTable() = default;
  TextTable(int rows, int columns)
      : rows_(rows),
        columns_(columns),
        cells_(static_cast<size_t>(rows) * columns) {
    if (rows < 0 || columns < 0)
      throw std::invalid_argument("a table has no negative size");
  }

  int Rows() const { return rows_; }
  int Columns() const { return columns_; }

  std::string& operator()(int row, int column) {
    return cells_[Index(row, column)];
  }
  const std::string& operator()(int row, int column) const {
    return cells_[Index(row, column)];
  }

  friend bool operator==(const TextTable&, const TextTable&) = default;

 private:
  size_t Index(int row, int column) const {
    if (row < 0 || row >= rows_ || column < 0 || column >= columns_)
      throw std::out_of_range("table cell (" + std::to_string(row) + ", " +
                              std::to_string(column) + ") outside " +
                              std::to_string(rows_) + " x " +
                              std::to_string(columns_));
    return static_cast<size_t>(row) * columns_ + column;
  }

  int rows_ = 0;
  int columns_ = 0;
  std::vector<std::string> cells_;
};

}  // namespace kestrana::core
