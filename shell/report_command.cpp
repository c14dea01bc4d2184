#include "shell/report_command.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

#include "host/except.h"
#include "report/report.h"
#include "shell/error_text.h"
#include "shell/options.h"
#include "shell/progress.h"
#include "shell/replace_file.h"
#include "tfl_rng/generator_catalogue.h"

namespace shell {

namespace {

constexpr char kReportUsage[] =
    "usage: tvrng report GENERATOR [options]\n"
    "       tvrng report --all [options]\n"
    "\n"
    "Measures a generator and writes what was seen as one HTML file: plots, each with the band\n"
    "where a perfect source would lie, and a verdict. --all compares all generators on one page;\n"
    "\"legacy\" is what the older two-part syntax draws from.\n"
    "\n"
    "  -o, --output FILE  where to (standard output, unless that is a terminal)\n"
    "  --seed N           0 to 4294967295 (0)\n"
    "  --help             this text\n";

struct ReportOptions {
  std::string generator;
  std::string output;
  std::uint32_t seed = 0;
  bool all = false;
  bool help = false;
};

ReportOptions parse(std::vector<std::string> const& words) {
  ReportOptions options;
  Option const rows[] = {
      {"--all", "", &options.all},
      {"--output", "-o", [&](std::string const& v) { options.output = v; }},
      {"--seed", "",
       [&](std::string const& v) {
         options.seed = static_cast<std::uint32_t>(wholeNumber("--seed", v, 0, 0xFFFFFFFFu));
       }},
      {"--help", "-h", &options.help}};
  std::vector<std::string> const generators = readOptions("tvrng report", words, rows);
  if (options.help) return options;
  if (generators.size() > 1) {
    throw UsageError(
        fmt::format("one generator at a time: {} or {}", generators[0], generators[1]));
  }
  if (!generators.empty()) options.generator = generators[0];
  if (options.all && !options.generator.empty()) {
    throw UsageError(fmt::format("--all is all of them, not {}", options.generator));
  }
  if (options.generator.empty() && !options.all) throw UsageError("tvrng report needs a generator");
  if (options.output.empty() && isatty(STDOUT_FILENO)) {
    throw UsageError("a report is a file: -o report.html");
  }
  return options;
}

std::string singlePage(ReportOptions const& options) {
  report::Subject const subject = report::subjectNamed(options.generator, options.seed);
  Progress progress;
  auto const results = report::measureAll(
      subject, [&](double share, std::string_view what) { progress.draw(share, what); });
  return report::reportPage(subject, results, TV_VERSION);
}

std::string comparison(ReportOptions const& options) {
  Progress progress;
  std::vector<report::Entry> entries;
  auto const generators = tfl_rng::generatorNames();
  std::vector<std::string> names(generators.begin(), generators.end());
  names.emplace_back("legacy");
  for (std::string const& name : names) {
    auto const done = static_cast<double>(entries.size());
    report::Subject const subject = report::subjectNamed(name, options.seed);
    auto const results = report::measureAll(subject, [&](double share, std::string_view) {
      progress.draw((done + share) / static_cast<double>(names.size()), name);
    });
    entries.push_back({subject, results});
  }
  return report::comparisonPage(entries, TV_VERSION);
}

}  // namespace

int runReportCommand(std::vector<std::string> const& words) {
  ReportOptions const options = parse(words);
  if (options.help) {
    std::fputs(kReportUsage, stdout);
    return 0;
  }
  // What cannot be written is told before the work.
  if (!options.output.empty()) checkReplaceable(options.output);
  try {
    std::string const page = options.all ? comparison(options) : singlePage(options);
    if (options.output.empty()) {
      std::fwrite(page.data(), 1, page.size(), stdout);
    } else {
      replaceFile(options.output, page);
    }
  } catch (foundation::core::except::AnyException const& error) {
    std::fputs(describeError(error).c_str(), stderr);
    return 1;
  }
  return 0;
}

}  // namespace shell
