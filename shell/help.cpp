#include "shell/help.h"

#include <fmt/format.h>

#include <algorithm>

#include "embedded_host/dispatcher.h"
#include "embedded_host/text.h"
#include "language/fault.h"
#include "language/functions.h"

namespace shell {

namespace {

constexpr HelpRow kRows[] = {
    {"rand", "rand(m,n,...)  rand([m n])  rand(...,'single')  rand(...,'like',p)  rand(s,...)",
     "uniform values on the open interval (0,1), from the global stream or from stream s",
     "rand(2,3)"},
    {"randn",
     "randn(m,n,...)  randn([m n])  randn(...,'single')  randn(...,'like',p)  randn(s,...)",
     "standard normal values", "randn(2,3,'single')"},
    {"randi", "randi(imax,m,n,...)  randi([imin imax],...)  randi(...,'int8')  randi(s,...)",
     "uniform whole numbers from 1 to imax, or from imin to imax", "randi([1 6],2,3,'uint8')"},
    {"randperm", "randperm(n)  randperm(n,k)  randperm(s,...)",
     "a random order of 1 to n, or k distinct ones of them", "randperm(10,3)"},
    {"RandStream", "RandStream(name)  RandStream(name,'Seed',7,'NumStreams',4,'StreamIndices',2)",
     "makes a stream of its own; 'generators' lists the names, long and short",
     "s = RandStream('mrg32k3a','Seed',7)"},
    {"RandStream.global", "g = RandStream.global()  RandStream.global(s)",
     "the stream that rand, randn, randi and randperm draw from; with s, s becomes it",
     "g = RandStream.global()"},
    {"reset", "reset(s)  reset(s,seed)", "takes a stream back to its start",
     "s = RandStream('mt19937ar'); reset(s,11)"},
    {"advance", "advance(s,n)", "moves a stream on as n draws would",
     "s = RandStream('philox4x32_10'); advance(s,2^40)"},
    {"snapshot", "x = snapshot(s)",
     "a stream as text, with everything that what it draws depends on; restore takes it back",
     "s = RandStream('mrg32k3a'); snapshot(s)"},
    {"restore", "restore(s,x)", "makes s the stream that the snapshot x was taken of",
     "s = RandStream('mrg32k3a'); x = snapshot(s); a = rand(s); restore(s,x); same(a, rand(s))"},
    {"RandStream.restore", "s = RandStream.restore(x)", "a new stream from a snapshot",
     "x = snapshot(RandStream('mrg32k3a')); s = RandStream.restore(x)"},
    {"delete", "delete(s)", "lets go of a stream before its variable goes",
     "s = RandStream('mt19937ar'); delete(s)"},
    {"Type", "s.Type",
     "the name of a stream's generator; of a global stream made by the settings, their spelling",
     "s = RandStream('twister'); s.Type"},
    {"Substream", "s.Substream = k", "moves a stream to the start of its substream k, from 1",
     "s = RandStream('mrg32k3a'); s.Substream = 4;"},
    {"State", "x = s.State  s.State = x", "where a stream stands; writing it back resumes there",
     "s = RandStream('mrg32k3a'); x = s.State; s.State = x;"},
    {"RandnAlg", "s.RandnAlg = 'Ziggurat', 'Polar' or 'Inversion'",
     "the method that makes a stream's normal values",
     "s = RandStream('mrg32k3a'); s.RandnAlg = 'Polar';"},
    {"Antithetic", "s.Antithetic = true",
     "uniform values 1-u instead of u, normal ones -z instead of z",
     "s = RandStream('mrg32k3a'); s.Antithetic = true;"},
    {"FullPrecision", "s.FullPrecision = false",
     "whether a value uses as many random bits as it can hold",
     "s = RandStream('mt19937ar'); s.FullPrecision = false;"},
    {"Parameters", "p = s.Parameters",
     "streams, substreams, log2 of a stream's and of a substream's length",
     "s = RandStream('mrg32k3a'); s.Parameters"},
    {"generators", "generators", "what the generators can do", "generators"},
    {"explain", "explain EXPRESSION",
     "evaluates it, then tells what each call drew and where the streams stand",
     "explain randn(1,3)"},
    {"histogram", "histogram(x)  histogram(x,'x.svg')",
     "how often values come, drawn here or to an SVG file", "histogram(randn(1,1000))"},
    {"chart", "chart(y)  chart(x,y)  chart(x,y,'xy.svg')",
     "points, or a line where x rises, drawn here or to an SVG file",
     "chart(cumsum(randn(1,200)))"},
    {"whos", "whos", "the variables with size, class and bytes", "x = 1; whos"},
    {"format", "format('long')  format('short')  format(digits)",
     "how many digits of a number are shown: 15, 6, or as many as told", "format('long')"},
    {"help", "help  help('name')", "this text", "help('rand')"},
    {"exit", "exit  exit(status)", "leaves the shell; so do quit and Ctrl-D", "exit"},
};

std::string listOf(std::vector<std::string> const& names, std::size_t width) {
  std::string out;
  std::size_t column = 0;
  for (std::string const& name : names) {
    if (column > 0 && column + 2 + name.size() >= width) {
      out += '\n';
      column = 0;
    }
    out += "  " + name;
    column += 2 + name.size();
  }
  return out + '\n';
}

std::string overview(std::size_t width) {
  std::string out =
      "  Type a statement; its value is shown unless a semicolon ends it.\n"
      "    x = rand(2,3)\n"
      "    s = RandStream('philox4x32_10','Seed',7); randn(s,1,5)\n"
      "    for k = 1:3, print(k, randi(6)), end\n"
      "  help('name') or help name tells more of one of these:\n";
  std::vector<std::string> names;
  for (HelpRow const& row : kRows) names.emplace_back(row.name);
  out += listOf(names, width);
  out += "  and of the language's own functions:\n";
  names.clear();
  for (auto const table : language::functionTables()) {
    for (auto const& row : table) names.emplace_back(row.name);
  }
  std::sort(names.begin(), names.end());
  return out + listOf(names, width);
}

}  // namespace

std::span<HelpRow const> helpRows() { return kRows; }

std::string helpText(std::string_view topic, int width) {
  if (topic.empty()) return overview(static_cast<std::size_t>(width));
  std::vector<std::string> known;
  for (HelpRow const& row : kRows) {
    if (embedded_host::equalIgnoringAsciiCase(row.name, topic)) {
      return fmt::format("  {}\n  {}\n    > {}\n", row.usage, row.what, row.example);
    }
    known.emplace_back(row.name);
  }
  for (auto const table : language::functionTables()) {
    for (auto const& row : table) {
      if (topic == row.name) {
        return fmt::format("  {}: {}\n    > {}\n", row.name, row.what, row.example);
      }
      known.emplace_back(row.name);
    }
  }
  std::string const closest = embedded_host::closestName(topic, known);
  language::raiseFault(
      "help", "There is no help on '" + std::string(topic) + "'.",
      closest.empty() ? "help alone lists the topics" : "did you mean " + closest + "?", 1);
}

}  // namespace shell
