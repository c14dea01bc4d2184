// tv_battery: statistical tests of every generator, as a table of Markdown.

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "battery/tests.h"
#include "rng/create_stream.h"
#include "shell/progress.h"
#include "statistics/p_values.h"
#include "statistics/uniform_tests.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using battery::Result;
using battery::Source;
using battery::testNormals;
using battery::testPermutations;
using battery::testUniforms;

constexpr char kUsage[] =
    "usage: tv_battery [--log2 N] [--seed S] [--group NAME] [--only TEXT] [--all-p]\n"
    "       tv_battery --words SOURCE [--low] [--seed S]\n"
    "\n"
    "  --log2 N        2^N numbers for each test, 14 to 28 (22)\n"
    "  --seed S        0 to 4294967295 (1)\n"
    "  --group NAME    generators, streams, weak, normals or permutations (all of them)\n"
    "  --all-p         the p-value of every test\n"
    "  --only TEXT     sources whose name contains TEXT\n"
    "  --words SOURCE  writes 32-bit words of one source without end, for other batteries:\n"
    "                  the leading bits of each number, or with --low its lowest ones reversed\n"
    "\n"
    "The exit status is 0 when every source passed or failed as it should.\n";

struct Options {
  int log2 = 22;
  std::uint32_t seed = 1;
  bool allP = false;
  bool low = false;
  std::string group;
  std::string only;
  std::string words;

  bool wants(std::string const& name) const { return name.find(only) != std::string::npos; }
};

[[noreturn]] void refuse(std::string const& why) {
  std::fprintf(stderr, "tv_battery: %s\n%s", why.c_str(), kUsage);
  std::exit(2);
}

std::uint32_t number(std::string const& option, char const* text, double low, double high) {
  char* end = nullptr;
  double const value = std::strtod(text, &end);
  if (*end != '\0' || end == text || !(value >= low && value <= high) || value != std::floor(value))
    refuse(option + " does not take " + text);
  return static_cast<std::uint32_t>(value);
}

Options parse(int count, char** words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    std::string const word = words[i];
    auto const value = [&] {
      if (++i == count) refuse(word + " needs a value");
      return words[i];
    };
    if (word == "--log2")
      options.log2 = static_cast<int>(number(word, value(), 14, 28));
    else if (word == "--seed")
      options.seed = number(word, value(), 0, 4294967295.0);
    else if (word == "--all-p")
      options.allP = true;
    else if (word == "--low")
      options.low = true;
    else if (word == "--group")
      options.group = value();
    else if (word == "--only")
      options.only = value();
    else if (word == "--words")
      options.words = value();
    else
      refuse("no option " + word);
  }
  return options;
}

// Writes until nobody reads any more.
int writeWords(Source const& source, Options const& options) {
  constexpr std::size_t kNumbers = std::size_t{1} << 16;
  auto const fill = source.start(options.seed);
  std::vector<double> u(kNumbers);
  std::vector<std::uint32_t> words(kNumbers);
  do {
    fill(u);
    if (options.low) u = statistics::lowBitsFirst(u, source.bits);
    std::transform(u.begin(), u.end(), words.begin(),
                   [](double x) { return static_cast<std::uint32_t>(x * 0x1p32); });
  } while (std::fwrite(words.data(), sizeof words[0], kNumbers, stdout) == kNumbers);
  return 0;
}

enum class Expected { pass, fail };

// Near 1 its distance from there tells more.
std::string textOf(double p) {
  char text[32];
  std::snprintf(text, sizeof text, p > 0.99 ? "1 - %.2g" : "%.2g", p > 0.99 ? 1 - p : p);
  return text;
}

// Prints the rows of the table and remembers whether all went as it should.
class Report {
 public:
  Report() {
    std::printf(
        "| Source | p-values | Most extreme | Family-wise | Verdict |\n|---|---|---|---|---|\n");
  }

  void showAllP(bool on) noexcept { allP_ = on; }

  void add(std::string const& name, std::vector<Result> const& results, Expected expected) {
    std::vector<double> ps(results.size());
    std::ranges::transform(results, ps.begin(), &Result::p);
    auto const extremity = [](Result const& result) { return std::min(result.p, 1 - result.p); };
    Result const& worst = *std::ranges::min_element(results, {}, extremity);
    double const familyWise = statistics::familyWise(ps);
    bool const failed = familyWise < battery::kFailure;
    bool const asExpected = failed == (expected == Expected::fail);
    asExpected_ = asExpected_ && asExpected;
    std::printf("| %s | %zu | %s: %s | %.2g | %s%s |\n", name.c_str(), ps.size(),
                worst.test.c_str(), textOf(worst.p).c_str(), familyWise,
                failed ? "fails" : "passes", asExpected ? "" : ", UNEXPECTED");
    if (allP_)
      for (Result const& result : results)
        std::printf("| | | %s: %s | | |\n", result.test.c_str(), textOf(result.p).c_str());
    std::fflush(stdout);
  }

  bool asExpected() const noexcept { return asExpected_; }

 private:
  bool allP_ = false;
  bool asExpected_ = true;
};

// A row of the table before it is run.
struct Row {
  std::string name;
  std::function<std::vector<Result>()> run;
  Expected expected = Expected::pass;
};

std::vector<Row> rowsOf(std::vector<Source> const& sources, Options const& options,
                        Expected expected) {
  std::vector<Row> rows;
  rows.reserve(sources.size());
  for (Source const& source : sources)
    rows.push_back({source.name,
                    [source, options] { return testUniforms(source, options.seed, options.log2); },
                    expected});
  return rows;
}

std::unique_ptr<randstream> newStream(char const* generator, Options const& options) {
  return rng::createStream(generator, options.seed);
}

// Every generator by every method: its own where it brings that one, else the stream's.
std::vector<Row> normalRows(Options const& options) {
  constexpr int kMore = 4;  // a normal costs less than a number in a test of uniforms
  std::vector<Row> rows;
  for (char const* const generator : tfl_rng::generatorNames()) {
    for (char const* const method : {"Ziggurat", "Polar", "Inversion"}) {
      rows.push_back(
          {std::string("normals: ") + generator + ", " + method, [generator, method, options] {
             auto const stream = newStream(generator, options);
             stream->setRandnAlg(method);
             return testNormals(*stream, options.log2 + kMore);
           }});
    }
  }
  return rows;
}

std::vector<Row> permutationRows(Options const& options) {
  std::vector<Row> rows;
  for (char const* const generator : tfl_rng::generatorNames()) {
    rows.push_back({std::string("permutations: ") + generator, [generator, options] {
                      return testPermutations(*newStream(generator, options), options.log2);
                    }});
  }
  return rows;
}

// A part of the battery.
struct Group {
  char const* name;
  std::vector<Row> (*rows)(Options const& options);
};

constexpr Group kGroups[] = {
    {"generators",
     [](Options const& options) {
       return rowsOf(battery::generatorSources(), options, Expected::pass);
     }},
    {"streams",
     [](Options const& options) {
       return rowsOf(battery::interleavedSources(), options, Expected::pass);
     }},
    {"weak",
     [](Options const& options) {
       return rowsOf(battery::weakSources(), options, Expected::fail);
     }},
    {"normals", normalRows},
    {"permutations", permutationRows},
};

int runBattery(Options const& options) {
  std::vector<Row> rows;
  bool any = false;
  for (Group const& group : kGroups) {
    if (!options.group.empty() && options.group != group.name) continue;
    any = true;
    std::ranges::copy_if(group.rows(options), std::back_inserter(rows),
                         [&](Row const& row) { return options.wants(row.name); });
  }
  if (!any) refuse("no group '" + options.group + "'");

  Report report;
  report.showAllP(options.allP);
  // On a terminal the rows would run into the bar.
  shell::Progress progress(isatty(STDOUT_FILENO) == 0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    progress.draw(static_cast<double>(i) / static_cast<double>(rows.size()), rows[i].name);
    report.add(rows[i].name, rows[i].run(), rows[i].expected);
  }
  return report.asExpected() ? 0 : 1;
}

int run(Options const& options) {
  if (options.words.empty()) return runBattery(options);
  for (auto const& sources :
       {battery::generatorSources(), battery::interleavedSources(), battery::weakSources()})
    for (Source const& source : sources)
      if (source.name == options.words) return writeWords(source, options);
  refuse("no source '" + options.words + "'");
}

}  // namespace

int main(int count, char** words) {
  try {
    return run(parse(count, words));
  } catch (std::exception const& error) {
    std::fprintf(stderr, "tv_battery: %s\n", error.what());
    return 2;
  }
}
