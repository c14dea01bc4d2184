#include "shell/report_command.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "host/except.h"
#include "report/report.h"
#include "shell/command_line.h"
#include "shell/error_text.h"
#include "shell/progress.h"
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

std::uint32_t seedFrom(std::string const& text) {
  try {
    std::size_t used = 0;
    unsigned long long const value = std::stoull(text, &used);
    if (used == text.size() && text[0] != '-' && value <= 0xFFFFFFFF) {
      return static_cast<std::uint32_t>(value);
    }
  } catch (std::logic_error const&) {
    // told below
  }
  throw UsageError(fmt::format("--seed takes a whole number from 0 to 4294967295, not {}", text));
}

ReportOptions parse(std::vector<std::string> const& words) {
  ReportOptions options;
  for (std::size_t i = 0; i < words.size(); ++i) {
    std::string const& word = words[i];
    auto const value = [&] {
      if (i + 1 == words.size()) throw UsageError(fmt::format("{} needs a value", word));
      return words[++i];
    };
    if (word == "--help" || word == "-h") {
      options.help = true;
    } else if (word == "--all") {
      options.all = true;
    } else if (word == "-o" || word == "--output") {
      options.output = value();
    } else if (word == "--seed") {
      options.seed = seedFrom(value());
    } else if (word.starts_with('-') && word.size() > 1) {
      throw UsageError(fmt::format("tvrng report has no option {}", word));
    } else if (!options.generator.empty()) {
      throw UsageError(fmt::format("one generator at a time: {} or {}", options.generator, word));
    } else {
      options.generator = word;
    }
  }
  if (options.help) return options;
  if (options.all && !options.generator.empty()) {
    throw UsageError(fmt::format("--all is all of them, not {}", options.generator));
  }
  if (options.generator.empty() && !options.all) throw UsageError("tvrng report needs a generator");
  if (options.output.empty() && isatty(STDOUT_FILENO)) {
    throw UsageError("a report is a file: -o report.html");
  }
  return options;
}

// An empty name is standard output.
void write(std::string const& page, std::string const& file) {
  if (file.empty()) {
    std::fwrite(page.data(), 1, page.size(), stdout);
    return;
  }
  std::ofstream out(file, std::ios::binary);
  out << page << std::flush;
  if (!out)
    throw std::runtime_error(fmt::format("cannot write {}: {}", file, std::strerror(errno)));
}

std::string singlePage(ReportOptions const& options) {
  report::Subject const subject = report::subjectNamed(options.generator, options.seed);
  write("", options.output);  // a file that cannot be written is told before the work
  Progress progress;
  auto const results = report::measureAll(
      subject, [&](double share, std::string_view what) { progress.draw(share, what); });
  return report::reportPage(subject, results, TV_VERSION);
}

std::string comparison(ReportOptions const& options) {
  write("", options.output);
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
  try {
    std::string const page = options.all ? comparison(options) : singlePage(options);
    write(page, options.output);
  } catch (foundation::core::except::AnyException const& error) {
    std::fputs(describeError(error).c_str(), stderr);
    return 1;
  }
  return 0;
}

}  // namespace shell
