#include "shell/shell_functions.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <system_error>

#include "embedded_host/array.h"
#include "host/messages.h"
#include "language/fault.h"
#include "language/values.h"
#include "report/drawings.h"
#include "shell/generators_table.h"
#include "shell/help.h"
#include "shell/interpreter.h"
#include "shell/replace_file.h"

namespace shell {

namespace {

using Arguments = std::span<txArray const* const>;

std::uint64_t bytesOf(txArray const& value) {
  if (value.classID() == txClassCell) {
    std::uint64_t total = 0;
    for (std::uint64_t i = 0; i < value.numel(); ++i) {
      if (txArray const* content = value.cell(i)) total += bytesOf(*content);
    }
    return total;
  }
  return value.numel() * embedded_host::elementBytes(value.classID()) * (value.isComplex() ? 2 : 1);
}

void whos(Interpreter& interpreter, Arguments) {
  auto const& variables = interpreter.session().variables();
  std::size_t nameWidth = 4;
  std::size_t sizeWidth = 4;
  for (auto const& [name, value] : variables) {
    nameWidth = std::max(nameWidth, name.size());
    sizeWidth = std::max(sizeWidth, language::sizeText(value->dims()).size());
  }
  if (variables.empty()) return interpreter.write("  no variables\n");
  interpreter.write(fmt::format("  {:<{}}  {:>{}}  {:>12}  class\n", "name", nameWidth, "size",
                                sizeWidth, "bytes"));
  for (auto const& [name, value] : variables) {
    interpreter.write(fmt::format("  {:<{}}  {:>{}}  {:>12}  {}{}\n", name, nameWidth,
                                  language::sizeText(value->dims()), sizeWidth, bytesOf(*value),
                                  value->isSparse()    ? "sparse "
                                  : value->isComplex() ? "complex "
                                                       : "",
                                  language::classText(*value)));
  }
}

// format('long'), format('short'), or a number of digits.
void format(Interpreter& interpreter, Arguments arguments) {
  int digits = 6;
  if (!arguments.empty()) {
    txArray const& wanted = *arguments[0];
    if (!language::isScalarText(wanted)) {
      digits = static_cast<int>(std::min<std::uint64_t>(language::countArgument(wanted, 1, 1), 17));
    } else if (language::utf8Of(wanted) == "long") {
      digits = 15;
    } else if (language::utf8Of(wanted) != "short") {
      language::raiseFault("option", "There is no such format.",
                           "'short', 'long' or 1 to 17 digits", 1);
    }
  }
  interpreter.style().digits = digits;
}

void help(Interpreter& interpreter, Arguments arguments) {
  std::string const topic = arguments.empty() ? "" : language::textArgument(*arguments[0], 1);
  interpreter.write(helpText(topic, interpreter.style().width, interpreter.session()));
}

void generators(Interpreter& interpreter, Arguments) { interpreter.write(generatorsTable()); }

void leave(Interpreter&, Arguments arguments) {
  double const status = arguments.empty() ? 0 : language::numberArgument(*arguments[0], 1);
  throw ExitRequest{language::castElement<std::uint8_t>(status)};
}

std::vector<double> doublesOf(txArray const& value, int position) {
  txArrayPtr const elements =
      language::convertClass(*language::elementsArgument(value, position), txClassDouble);
  if (elements->isComplex()) {
    language::raiseFault("type", "Complex values cannot be drawn.", "try real(x) or abs(x)",
                         position);
  }
  double const* const data = std::as_const(*elements).dataAs<double>();
  return {data, data + elements->numel()};
}

// Splits off the name of a file, the last argument when that is a text. Of the others, `fewest` to
// `most` remain.
std::string fileArgument(Arguments& arguments, std::size_t fewest, std::size_t most,
                         char const* usage) {
  std::string file;
  if (!arguments.empty() && language::isScalarText(*arguments.back())) {
    file = language::utf8Of(*arguments.back());
    arguments = arguments.first(arguments.size() - 1);
  }
  if (arguments.size() < fewest) matrix::detail::error_minrhs();
  if (arguments.size() > most) {
    language::raiseFault(
        "text",
        "The last input is the name of a file, not a " + language::describe(*arguments[most]) + ".",
        usage, static_cast<int>(most) + 1);
  }
  return file;
}

void writeFile(std::string const& file, std::string const& content) {
  try {
    replaceFile(file, content);
  } catch (std::system_error const& error) {
    language::raiseFault("file", fmt::format("Cannot write {}: {}.", file, error.code().message()));
  }
}

// histogram(x), histogram(x,file)
void histogram(Interpreter& interpreter, Arguments arguments) {
  std::string const file = fileArgument(
      arguments, 1, 1, "histogram(x) chooses its bins; histogram(x,'x.svg') draws to a file");
  auto const values = doublesOf(*arguments[0], 1);
  if (!file.empty()) return writeFile(file, report::histogramFile(values));
  interpreter.write(report::histogramText(values, interpreter.style().width));
}

// chart(y), chart(x,y), and with a file
void chart(Interpreter& interpreter, Arguments arguments) {
  std::string const file = fileArgument(arguments, 1, 2, "chart(x,y,'xy.svg') draws to a file");
  auto const y = doublesOf(*arguments.back(), static_cast<int>(arguments.size()));
  std::vector<double> x(y.size());
  std::iota(x.begin(), x.end(), 1.0);
  if (arguments.size() == 2) x = doublesOf(*arguments[0], 1);
  if (x.size() != y.size()) {
    language::raiseFault("size", fmt::format("x has {} values and y has {}.", x.size(), y.size()),
                         "each point needs one of both", 2);
  }
  std::vector<report::Point> points(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) points[i] = {x[i], y[i]};
  if (!file.empty()) return writeFile(file, report::chartFile(points));
  interpreter.write(report::chartText(points, interpreter.style().width));
}

void explain(Interpreter&, Arguments) {
  language::raiseFault("explain", "explain is a command, not a function.",
                       "at the start of a line: explain randn(1,3)");
}

struct Row {
  char const* name;
  void (*body)(Interpreter&, Arguments);
  int most;
};
constexpr Row kRows[] = {{"whos", whos, 0},           {"format", format, 1},
                         {"help", help, 1},           {"generators", generators, 0},
                         {"histogram", histogram, 2}, {"chart", chart, 3},
                         {"explain", explain, 1},     {"exit", leave, 1},
                         {"quit", leave, 1}};

}  // namespace

void registerShellFunctions(Interpreter& interpreter) {
  // The two that are typed most need no parentheses.
  for (char const* const name : {"help", "format"}) interpreter.session().addCommand(name);
  for (Row const& row : kRows) {
    interpreter.session().vm().functions().add(
        row.name, [&interpreter, &row](int nlhs, txArrayPtr*, int nrhs, txArray const** prhs) {
          if (nlhs > 0) matrix::detail::error_maxlhs();
          if (nrhs > row.most) matrix::detail::error_maxrhs();
          row.body(interpreter, {prhs, static_cast<std::size_t>(nrhs)});
        });
  }
}

}  // namespace shell
