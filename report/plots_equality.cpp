// The same numbers with every instruction set and number of threads.

#include <fmt/format.h>

#include <algorithm>

#include "golden/check.h"
#include "report/plots.h"

namespace report {

namespace {

struct Cell {
  std::string target;
  int threads;
  golden::Result result;
};

std::string shortHash(std::uint64_t hash) { return fmt::format("{:016x}", hash).substr(0, 8); }

}  // namespace

Finding measureEquality(Subject const& subject) {
  std::vector<Cell> cells;
  std::vector<std::string> targets;
  std::vector<int> threads;
  std::size_t compared = 0;
  std::size_t different = 0;
  for (golden::Setting const& setting : golden::settings()) {
    cells.push_back({setting.targetName(), setting.threads, golden::check(setting, subject.name)});
    compared += cells.back().result.rows;
    different += cells.back().result.differences.size();
    if (std::ranges::find(targets, cells.back().target) == targets.end()) {
      targets.push_back(cells.back().target);
    }
    if (std::ranges::find(threads, setting.threads) == threads.end()) {
      threads.push_back(setting.threads);
    }
  }
  Finding finding;
  finding.holds = compared > 0 && different == 0;
  finding.good = fmt::format("The same bits in every way of drawing them: {} comparisons.",
                             readable(static_cast<double>(compared)));
  finding.bad = fmt::format("Different bits: {} of {} comparisons fail.",
                            readable(static_cast<double>(different)),
                            readable(static_cast<double>(compared)));
  finding.note = fmt::format(
      "Rows: the instruction sets of this machine that the kernels are built for. Columns: "
      "threads. "
      "Each cell draws {} samples, of all distributions and modes, and shows the hash of them all; "
      "it should be {}, that of the built-in table, on every machine.",
      cells.front().result.rows, shortHash(cells.front().result.goldenHash));
  finding.draw = [=](Frame const& frame) {
    constexpr double kRow = 30;
    constexpr double kLeft = 66;
    Svg svg(frame.width, 52 + kRow * static_cast<double>(targets.size()),
            "Hashes by instruction set and number of threads");
    double const width = (frame.width - kLeft) / static_cast<double>(threads.size());
    for (std::size_t i = 0; i < threads.size(); ++i) {
      svg.text(kLeft + width * (static_cast<double>(i) + 0.5), 30,
               fmt::format("{}{}", threads[i],
                           frame.isNarrow() && i > 0 ? ""
                           : threads[i] == 1         ? " thread"
                                                     : " threads"),
               "tick", Anchor::middle);
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::size_t const row = i / threads.size();
      double const x = kLeft + width * static_cast<double>(i % threads.size());
      double const y = 40 + kRow * static_cast<double>(row);
      if (i % threads.size() == 0) {
        svg.text(kLeft - 10, y + 18, cells[i].target, "name", Anchor::end);
      }
      bool const good = cells[i].result.differences.empty();
      svg.rectangle(x, y, width - 3, kRow - 3, good ? "core" : "outside");
      svg.text(x + (width - 3) / 2, y + 18, (good ? "" : "✕ ") + shortHash(cells[i].result.hash),
               "hash", Anchor::middle);
    }
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
