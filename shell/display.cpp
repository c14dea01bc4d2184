#include "shell/display.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "embedded_host/array.h"
#include "embedded_host/object_system.h"
#include "embedded_host/text.h"
#include "language/strings.h"
#include "language/values.h"
#include "shell/number_columns.h"
#include "shell/terminal.h"

namespace shell {

namespace {

using language::classText;
using language::sizeText;

constexpr std::uint64_t kMostRows = 40;  // more are abbreviated to the two numbers below
constexpr std::uint64_t kFirstRows = 20;
constexpr std::uint64_t kLastRows = 5;
constexpr std::uint64_t kMostFolds = 8;  // groups of columns
constexpr std::uint64_t kMostPages = 6;
constexpr std::uint64_t kMostItems = 30;  // cells, properties, sparse entries
constexpr std::size_t kMostText = 2000;   // characters of a text
constexpr double kWholeLimit = 1e16;      // whole numbers below are shown with all digits

// The text as a literal of the language, on one line.
std::string quoted(std::u16string_view text, char quote) {
  std::string out(1, quote);
  std::size_t const shown = std::min(text.size(), kMostText);
  for (char const c : embedded_host::utf16ToUtf8(text.substr(0, shown))) {
    if (c == quote) out += quote;
    // Control characters would move the cursor.
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      out += c == '\n'   ? "\\n"
             : c == '\t' ? "\\t"
                         : fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
    } else {
      out += c;
    }
  }
  out += quote;
  if (shown < text.size()) out += fmt::format(" ... {} characters", text.size());
  return out;
}

std::string stringElement(txArray const& value, std::uint64_t index) {
  auto const text = embedded_host::stringAt(value, index);
  return text ? quoted(*text, '"') : "<missing>";
}

bool isElements(txArray const& value) {
  return language::hasElements(value.classID()) && !value.isSparse();
}

// A scalar as the language would read it back.
std::string scalarText(txArray const& value, int digits) {
  if (value.isLogical()) return *value.dataAs<bool>() ? "true" : "false";
  bool const isWhole = language::isFloatClass(value.classID()) && !value.isComplex() &&
                       std::fabs(value.scalarAsDouble()) < kWholeLimit &&
                       value.scalarAsDouble() == std::floor(value.scalarAsDouble());
  std::string text = value.isComplex() || isWhole ? NumberColumns(value, {0}, digits).text(0)
                                                  : language::elementText(value, 0, digits);
  if (value.classID() == txClassDouble) return text;
  return classText(value) + '(' + text + ')';
}

std::string heading(txArray const& value) {
  return (value.isEmpty() ? "empty " : "") + sizeText(value.dims()) +
         (value.isSparse()    ? " sparse "
          : value.isComplex() ? " complex "
                              : " ") +
         classText(value);
}

class Display {
 public:
  Display(txArray const& value, DisplayStyle const& style) : value_(value), style_(style) {}

  std::string run(std::string_view name) {
    std::string const start = name.empty() ? "" : std::string(name) + " = ";
    bool const oneLine = isElements(value_) && value_.isScalar() && value_.classID() != txClassChar;
    if (oneLine) return start + scalarText(value_, style_.digits) + '\n';
    if (auto const text = value_.scalarText()) {
      return start + quoted(*text, value_.classID() == txClassString ? '"' : '\'') + '\n';
    }
    if (value_.classID() == txClassObject) return start + object();
    if (value_.isEmpty()) return start + heading(value_) + '\n';
    if (value_.isSparse()) return start + sparse();
    if (value_.classID() == txClassCell) return start + heading(value_) + '\n' + cells();
    if (!isElements(value_) && value_.classID() != txClassString)
      return start + heading(value_) + '\n';
    std::string const body = pages();
    return start + heading(value_) + factor_ + '\n' + body;
  }

 private:
  struct Selection {
    std::vector<std::uint64_t> shown;  // positions along one extent
    std::uint64_t left = 0;            // how many were left out
    std::uint64_t gapAfter = ~std::uint64_t{0};
  };

  static Selection select(std::uint64_t extent) {
    Selection selection;
    bool const all = extent <= kMostRows;
    for (std::uint64_t i = 0; i < (all ? extent : kFirstRows); ++i) selection.shown.push_back(i);
    if (!all) {
      selection.gapAfter = kFirstRows - 1;
      selection.left = extent - kFirstRows - kLastRows;
      for (std::uint64_t i = extent - kLastRows; i < extent; ++i) selection.shown.push_back(i);
    }
    return selection;
  }

  // Two-dimensional pages, each with its indices when there are several.
  std::string pages() {
    auto const dims = value_.dims();
    rows_ = dims[0];
    columns_ = dims[1];
    std::uint64_t const count = value_.numel() / (rows_ * columns_);
    std::uint64_t const shown = std::min(count, kMostPages);
    rowSelection_ = select(rows_);
    // No terminal shows more columns than this in the folds that it gets.
    std::uint64_t const fit = static_cast<std::uint64_t>(style_.width) / 3 * kMostFolds;
    columnsConsidered_ = std::min(columns_, fit);
    std::vector<std::uint64_t> positions;
    for (std::uint64_t p = 0; p < shown; ++p) {
      for (std::uint64_t j = 0; j < columnsConsidered_; ++j) {
        for (std::uint64_t const i : rowSelection_.shown) {
          positions.push_back((p * columns_ + j) * rows_ + i);
        }
      }
    }
    if (isElements(value_)) {
      numbers_.emplace(value_, positions, style_.digits);
      factor_ = numbers_->commonFactor();
    }
    std::string out;
    for (std::uint64_t p = 0; p < shown; ++p) {
      if (count > 1) out += pageTitle(p);
      out += page(p);
    }
    if (shown < count) out += fmt::format("  ... {} more pages\n", count - shown);
    return out;
  }

  std::string pageTitle(std::uint64_t page) const {
    std::string title = "  (:,:";
    for (std::uint64_t const extent : value_.dims().subspan(2)) {
      title += fmt::format(",{}", page % extent + 1);
      page /= extent;
    }
    return title + ")\n";
  }

  std::string element(std::uint64_t position) const {
    if (value_.classID() == txClassString) return stringElement(value_, position);
    return numbers_->text(position);
  }

  std::string page(std::uint64_t p) const {
    if (value_.classID() == txClassChar) return charPage(p);
    std::vector<std::vector<std::string>> texts(columnsConsidered_);
    std::size_t widest = 0;
    for (std::uint64_t j = 0; j < columnsConsidered_; ++j) {
      for (std::uint64_t const i : rowSelection_.shown) {
        texts[j].push_back(element((p * columns_ + j) * rows_ + i));
        widest = std::max(widest, displayWidth(texts[j].back()));
      }
    }
    std::uint64_t const perFold = std::max<std::uint64_t>(
        1, static_cast<std::uint64_t>(std::max(style_.width - 1, 1)) / (widest + 2));
    std::uint64_t const shown = std::min(columnsConsidered_, perFold * kMostFolds);
    std::string out;
    for (std::uint64_t from = 0; from < shown; from += perFold) {
      std::uint64_t const to = std::min(from + perFold, shown);
      if (columns_ > perFold) {
        out += to - from == 1 ? fmt::format("  column {}:\n", to)
                              : fmt::format("  columns {} to {}:\n", from + 1, to);
      }
      for (std::size_t r = 0; r < rowSelection_.shown.size(); ++r) {
        for (std::uint64_t j = from; j < to; ++j) {
          std::string const& text = texts[j][r];
          std::string const blanks(widest + 2 - displayWidth(text), ' ');
          // Numbers stand right, texts left.
          out += value_.classID() == txClassString
                     ? "  " + text + (j + 1 < to ? blanks.substr(2) : "")
                     : blanks + text;
        }
        out += '\n';
        if (rowSelection_.shown[r] == rowSelection_.gapAfter) {
          out += fmt::format("  ... {} more rows\n", rowSelection_.left);
        }
      }
    }
    if (shown < columns_) out += fmt::format("  ... {} more columns\n", columns_ - shown);
    return out;
  }

  std::string charPage(std::uint64_t p) const {
    std::string out;
    char16_t const* data = value_.dataAs<char16_t>() + p * rows_ * columns_;
    for (std::uint64_t const i : rowSelection_.shown) {
      std::u16string row;
      for (std::uint64_t j = 0; j < columns_ && j <= kMostText; ++j) row += data[j * rows_ + i];
      out += "  " + quoted(row, '\'') + '\n';
      if (i == rowSelection_.gapAfter) {
        out += fmt::format("  ... {} more rows\n", rowSelection_.left);
      }
    }
    return out;
  }

  std::string cells() const {
    std::string out;
    std::uint64_t const shown = std::min(value_.numel(), kMostItems);
    bool const matrix = value_.dims().size() == 2;
    for (std::uint64_t i = 0; i < shown; ++i) {
      std::uint64_t const rows = value_.dims()[0];
      txArray const* content = value_.cell(i);
      out += matrix ? fmt::format("  {{{},{}}}  ", i % rows + 1, i / rows + 1)
                    : fmt::format("  {{{}}}  ", i + 1);
      out += (content ? summarize(*content, style_.digits) : "empty 0x0 double") + '\n';
    }
    if (shown < value_.numel()) out += fmt::format("  ... {} more cells\n", value_.numel() - shown);
    return out;
  }

  std::string sparse() const {
    auto const view = embedded_host::sparseView(value_);
    std::uint64_t const count = view.rowIndices.size();
    std::string out = fmt::format("{}, {} stored\n", heading(value_), count);
    int const parts = value_.isComplex() ? 2 : 1;
    std::uint64_t shown = 0;
    for (std::size_t c = 0; c + 1 < view.columnStarts.size() && shown < kMostItems; ++c) {
      for (std::uint64_t k = view.columnStarts[c]; k < view.columnStarts[c + 1]; ++k) {
        if (++shown > kMostItems) break;
        double const re = view.values[k * parts];
        std::string text = language::numberText(re, style_.digits);
        if (parts == 2) {
          double const im = view.values[k * 2 + 1];
          text += (std::signbit(im) ? " - " : " + ") +
                  language::numberText(std::fabs(im), style_.digits) + 'i';
        }
        out += fmt::format("  ({},{})  {}\n", view.rowIndices[k] + 1, c + 1, text);
      }
    }
    if (count > kMostItems) out += fmt::format("  ... {} more\n", count - kMostItems);
    return out;
  }

  // A card: class, and a line for each property that is no method's business.
  std::string object() const {
    std::string out = classText(value_) + '\n';
    auto const definition = embedded_host::classOf(value_);
    if (!definition) return out;
    std::size_t widest = 0;
    for (auto const& property : definition->properties) {
      if (!property.hidden) widest = std::max(widest, property.name.size());
    }
    for (auto const& property : definition->properties) {
      if (property.hidden) continue;
      txArrayPtr content;
      try {
        content = txGetProperty(value_, property.name);
      } catch (std::exception const& error) {
        out += fmt::format("  {:>{}}  ({})\n", property.name, widest, error.what());
        continue;
      }
      if (content) {
        out += fmt::format("  {:>{}}  {}\n", property.name, widest,
                           summarize(*content, style_.digits));
      }
    }
    return out;
  }

  txArray const& value_;
  DisplayStyle style_;
  std::uint64_t rows_ = 0;
  std::uint64_t columns_ = 0;
  std::uint64_t columnsConsidered_ = 0;
  Selection rowSelection_;
  std::optional<NumberColumns> numbers_;
  std::string factor_;
};

}  // namespace

std::string summarize(txArray const& value, int digits) {
  if (auto const text = value.scalarText()) {
    std::u16string_view shown = *text;
    if (shown.size() > 60) return heading(value);
    return quoted(shown, value.classID() == txClassString ? '"' : '\'');
  }
  if (isElements(value) && value.isScalar()) return scalarText(value, digits);
  // A short row of numbers stands as it is.
  if (isElements(value) && value.classID() != txClassChar && value.dims().size() == 2 &&
      value.dims()[0] == 1 && value.numel() >= 1 && value.numel() <= 5) {
    std::string row = "[";
    for (std::uint64_t i = 0; i < value.numel(); ++i) {
      row += (i ? " " : "") + language::elementText(value, i, digits);
    }
    return value.classID() == txClassDouble ? row + ']' : classText(value) + '(' + row + "])";
  }
  return heading(value);
}

std::string displayValue(std::string_view name, txArray const& value, DisplayStyle const& style) {
  return Display(value, style).run(name);
}

}  // namespace shell
