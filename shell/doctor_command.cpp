#include "shell/doctor_command.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "golden/cases.h"
#include "golden/check.h"
#include "golden/table.h"
#include "shell/options.h"
#include "shell/version.h"

namespace shell {

namespace {

constexpr char kDoctorUsage[] =
    "usage: tvrng doctor [options]\n"
    "\n"
    "Draws from every generator in every distribution and mode, with every instruction set of "
    "this\n"
    "machine and on 1, 2, 5 and 16 threads, and compares hashes of the bits with the built-in "
    "table.\n"
    "\n"
    "  --json   the result as one line of JSON\n"
    "  --table  what this machine draws, as rows of the table, and no comparison\n"
    "  --help   this text\n"
    "\n"
    "Exit status: 0, 1 when a number differs, 2 for wrong use of the command.\n";

constexpr std::size_t kMostShown = 12;  // differences in the text

// What came of one instruction set, over its numbers of threads.
struct Cell {
  std::size_t rows = 0;
  std::size_t different = 0;
};

class Examination {
 public:
  // `tell` hears of each cell of the table as it is known.
  template <class Tell>
  explicit Examination(Tell tell) {
    for (std::string const generator : golden::generators()) {
      for (std::string const& target : targets()) {
        Cell cell;
        for (golden::Setting const& setting : settings_) {
          if (setting.targetName() != target) continue;
          golden::Result result = golden::check(setting, generator);
          cell.rows += result.rows;
          cell.different += result.differences.size();
          std::ranges::move(result.differences, std::back_inserter(differences_));
        }
        rows_ += cell.rows;
        tell(generator, target, cell);
      }
    }
  }

  static std::vector<std::string> targets() {
    std::vector<std::string> names;
    for (golden::Setting const& setting : golden::settings())
      if (names.empty() || names.back() != setting.targetName())
        names.push_back(setting.targetName());
    return names;
  }

  std::size_t rows() const { return rows_; }
  std::vector<golden::Difference> const& differences() const { return differences_; }
  // Every row of the table has been drawn in every setting.
  bool complete() const { return rows_ >= golden::rowCount() * settings_.size(); }
  bool good() const { return differences_.empty() && complete(); }

 private:
  std::vector<golden::Setting> settings_ = golden::settings();
  std::size_t rows_ = 0;
  std::vector<golden::Difference> differences_;
};

std::string goldenText(golden::Difference const& difference) {
  return difference.golden ? fmt::format("{:016x}", *difference.golden) : "not in the table";
}

// A table of generators and instruction sets, in colour on a terminal.
bool showText() {
  bool const colour = isatty(STDOUT_FILENO) != 0;
  auto const painted = [&](bool good, std::string const& text) {
    return colour ? fmt::format("\033[{}m{}\033[0m", good ? 32 : 31, text) : text;
  };
  auto const start = std::chrono::steady_clock::now();
  fmt::print("tvrng " TV_VERSION ", sequence version {}, {}\n\n{:<16}", golden::sequenceVersion(),
             kCompiler, "");
  for (std::string const& target : Examination::targets()) fmt::print("  {:<9}", target);

  std::string last;
  Examination const examination(
      [&](std::string const& generator, std::string const&, Cell const& cell) {
        if (generator != last) fmt::print("\n{:<16}", generator);
        last = generator;
        std::string const text =
            cell.different == 0 ? "ok" : fmt::format("{}/{}", cell.different, cell.rows);
        fmt::print("  {}", painted(cell.different == 0, fmt::format("{:<9}", text)));
        std::fflush(stdout);
      });
  std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;

  auto const& differences = examination.differences();
  fmt::print("\n\n");
  for (std::size_t i = 0; i < std::min(kMostShown, differences.size()); ++i)
    fmt::print("{} {}, {}, {} threads: {}, should be {}\n", differences[i].generator,
               differences[i].name, differences[i].setting.targetName(),
               differences[i].setting.threads, fmt::format("{:016x}", differences[i].drawn),
               goldenText(differences[i]));
  if (differences.size() > kMostShown)
    fmt::print("... and {} more; --json has them all\n", differences.size() - kMostShown);
  if (!examination.complete())
    fmt::print("{}\n", painted(false, "Rows of the table were not drawn."));
  if (examination.good())
    fmt::print("{} {} hashes in {:.1f} s.\n", painted(true, "The same numbers as everywhere:"),
               examination.rows(), taken.count());
  else
    fmt::print("{} {} of {} hashes differ.\n", painted(false, "Not the numbers of other machines:"),
               differences.size(), examination.rows());
  return examination.good();
}

bool showJson() {
  Examination const examination([](auto const&, auto const&, Cell const&) {});
  fmt::print(R"({{"version":"{}","sequenceVersion":{},"compiler":"{}","good":{},"complete":{},)"
             R"("hashes":{},"targets":[)",
             TV_VERSION, golden::sequenceVersion(), kCompiler, examination.good(),
             examination.complete(), examination.rows());
  char const* separator = "";
  for (std::string const& target : Examination::targets()) {
    fmt::print(R"({}"{}")", separator, target);
    separator = ",";
  }
  fmt::print(R"(],"differences":[)");
  separator = "";
  for (golden::Difference const& row : examination.differences()) {
    fmt::print(R"({}{{"generator":"{}","row":"{}","target":"{}","threads":{},"drawn":"{:016x}",)"
               R"("golden":"{}"}})",
               separator, row.generator, row.name, row.setting.targetName(), row.setting.threads,
               row.drawn, goldenText(row));
    separator = ",";
  }
  fmt::print("]}}\n");
  return examination.good();
}

void showTable() {
  for (std::string const generator : golden::generators())
    golden::computeRows(generator, [&](std::string_view name, std::uint64_t hash) {
      fmt::print("{} {} {:016x}\n", generator, name, hash);
    });
}

}  // namespace

int runDoctorCommand(std::vector<std::string> const& words) {
  bool json = false;
  bool table = false;
  bool help = false;
  Option const rows[] = {{"--json", "", &json}, {"--table", "", &table}, {"--help", "-h", &help}};
  std::vector<std::string> const others = readOptions("tvrng doctor", words, rows);
  if (help) {
    std::fputs(kDoctorUsage, stdout);
    return 0;
  }
  if (!others.empty()) {
    throw UsageError(fmt::format("tvrng doctor takes options only, not {}", others.front()));
  }
  if (json && table) throw UsageError("--json and --table do not go together");
  if (table) {
    showTable();
    return 0;
  }
  return (json ? showJson() : showText()) ? 0 : 1;
}

}  // namespace shell
