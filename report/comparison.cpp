// The page that compares generators.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/p_value_section.h"
#include "report/page.h"
#include "report/report.h"

namespace report {

namespace {

constexpr double kSketchWidth = 200;
constexpr double kSketchHeight = 120;

Result const* resultNamed(Entry const& entry, std::string_view id) {
  auto const found = std::ranges::find_if(
      entry.results, [&](Result const& result) { return id == result.plot->id; });
  return found == entry.results.end() ? nullptr : &*found;
}

// All verdicts, a row for each generator.
std::string matrix(std::vector<Entry> const& entries, Judgement const& judgement) {
  std::string out = "<div class=\"scroll\"><table class=\"matrix\">\n<thead><tr><th></th>";
  for (Result const& result : entries.front().results) {
    if (result.finding.isFact) continue;
    out += fmt::format("<th><span>{}</span></th>", escaped(result.plot->id));
  }
  out += "</tr></thead>\n<tbody>\n";
  std::size_t at = 0;
  for (Entry const& entry : entries) {
    out += fmt::format("<tr><th scope=\"row\">{}</th>", escaped(entry.subject.name));
    for (Result const& result : entry.results) {
      std::size_t const i = at++;
      if (result.finding.isFact) continue;
      bool const red = judgement.red[i];
      out += fmt::format("<td class=\"{}\" title=\"{}\">{}</td>", red ? "bad" : "good",
                         escaped(red ? result.finding.bad : result.finding.good),
                         verdictMark(red ? Verdict::bad : Verdict::good));
    }
    out += "</tr>\n";
  }
  return out + "</tbody></table></div>\n";
}

// One small drawing for each generator.
std::string multiples(std::vector<Entry> const& entries, std::string_view id, double level) {
  std::string out = "<div class=\"multiples\">\n";
  for (Entry const& entry : entries) {
    Result const* const result = resultNamed(entry, id);
    if (!result) continue;
    Svg svg(kSketchWidth, kSketchHeight, fmt::format("{}: {}", entry.subject.name, id));
    result->finding.sketch(svg, {0, 0, kSketchWidth, kSketchHeight}, level);
    out += fmt::format("<div><b>{}</b>{}</div>\n", escaped(entry.subject.name),
                       std::move(svg).finish());
  }
  return out + "</div>\n";
}

struct SpeedRow {
  std::string name;
  Nanoseconds nanoseconds;
};

std::string speeds(Frame const& frame, std::vector<SpeedRow> const& rows) {
  constexpr double kRow = 26;
  double low = 1e300;
  double high = 0;
  for (SpeedRow const& row : rows) {
    low = std::min({low, row.nanoseconds.uniforms, row.nanoseconds.normals});
    high = std::max({high, row.nanoseconds.alone, row.nanoseconds.normals});
  }
  double const top = 54;
  double const height = top + kRow * static_cast<double>(rows.size()) + 44;
  Svg svg(frame.width, height, "Nanoseconds a value, by generator");
  Axis x = logAxis(low * 0.8, high * 1.25, "nanoseconds a value");
  x.ticks.clear();
  for (double const ns : {0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0}) {
    if (ns >= x.scale.low() && ns <= x.scale.high()) x.ticks.push_back({ns, readable(ns)});
  }
  Chart chart(svg, {124, top, frame.width - 124 - 20, kRow * static_cast<double>(rows.size())}, x,
              Axis{Scale(Scale::Kind::linear, static_cast<double>(rows.size()), 0), "", {}});
  chart.frame();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    double const y = chart.y(static_cast<double>(i) + 0.5);
    Nanoseconds const& ns = rows[i].nanoseconds;
    double const marks[] = {ns.uniforms, ns.normals, ns.alone};
    svg.text(114, y + 4, rows[i].name, "name", Anchor::end);
    svg.line(chart.x(*std::ranges::min_element(marks)), y,
             chart.x(*std::ranges::max_element(marks)), y, "axis");
    static constexpr char const* kNames[] = {"rand", "randn", "one value"};
    for (std::size_t k = 0; k < 3; ++k) {
      svg.circle(chart.x(marks[k]), y, 4.5, fmt::format("knot series{}", k),
                 fmt::format("{}: {} {} ns", rows[i].name, kNames[k], readable(marks[k])));
    }
    if (i > 0) continue;
    // The first row's dots name themselves, each on a line of its own.
    for (std::size_t k = 0; k < 3; ++k) {
      double const at = chart.x(marks[k]);
      double const labelY = 12 + 13 * static_cast<double>(k);
      svg.line(at, labelY + 3, at, y - 5, "marker");
      svg.text(at + 4, labelY, kNames[k], fmt::format("mark series{}", k));
    }
  }
  return std::move(svg).finish();
}

}  // namespace

std::string comparisonPage(std::vector<Entry> const& entries, std::string_view version) {
  std::vector<Result> all;
  std::vector<Test> tests;
  for (Entry const& entry : entries) {
    for (Result const& result : entry.results) {
      all.push_back(result);
      for (Test const& test : result.finding.tests) {
        tests.push_back({entry.subject.name + ": " + test.name, test.p});
      }
    }
  }
  Judgement const judgement = judge(all);
  std::string outside;
  std::size_t at = 0;
  std::size_t outsiders = 0;
  for (Entry const& entry : entries) {
    std::string names;
    for (Result const& result : entry.results) {
      if (judgement.red[at++]) names += (names.empty() ? "" : ", ") + std::string(result.plot->id);
    }
    if (names.empty()) continue;
    ++outsiders;
    outside += fmt::format("{}{} ({})", outside.empty() ? "" : "; ", entry.subject.name, names);
  }
  bool const good = outsiders == 0;
  std::string body = fmt::format(
      "<div class=\"page single\">\n<header>\n<h1>{} generators</h1>\n<p class=\"lead\">Seed "
      "{}</p>\n"
      "<p class=\"summary\">{} {}</p>\n<p class=\"explain\">Blue is a generator, shaded is where a "
      "perfect source would lie. Over all {} tests of this page, one page in {} of perfect sources "
      "has a red verdict.</p>\n</header>\n<main>\n",
      entries.size(), entries.front().subject.seed,
      verdictMark(good ? Verdict::good : Verdict::bad),
      good ? "Nothing unusual in any of them."
           : fmt::format("{} of {} lie where a perfect source would. Outside: {}.",
                         entries.size() - outsiders, entries.size(), escaped(outside)),
      judgement.tests, readable(1 / kFamilyError));
  Verdict const verdict = good ? Verdict::good : Verdict::bad;
  body +=
      section("verdicts", "All verdicts", verdict,
              good ? "All as expected." : "Outside: " + outside + ".", matrix(entries, judgement),
              "Each column is a plot of the report of one generator, tvrng report NAME.");
  struct Multiple {
    char const* id;
    char const* title;
    char const* note;
  };
  constexpr Multiple kMultiples[] = {
      {"distribution", "Does the distribution stay on the diagonal?",
       "The share of values up to x, minus x, over x from 0 to 1; all with the same scale."},
      {"strip", "Do pairs lie on lines?",
       "Pairs of raw outputs whose first value is below 1/1024: first value to the right, next "
       "value "
       "upwards."},
      {"planes", "Do triples lie on planes?",
       "Triples by their distance from the nearest plane, which is the middle line of each."},
      {"neighbours", "Do neighbours know each other?",
       "Correlations of 16 neighbouring streams and substreams, or seeds where there is one "
       "stream; "
       "those beyond the band are outlined."}};
  for (Multiple const& multiple : kMultiples) {
    std::string names;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (!judgement.red[i] || all[i].plot->id != std::string_view(multiple.id)) continue;
      names +=
          (names.empty() ? "" : ", ") + entries[i / entries.front().results.size()].subject.name;
    }
    body += section(multiple.id, multiple.title, names.empty() ? Verdict::good : Verdict::bad,
                    names.empty() ? "None stands out." : names + " stands out.",
                    multiples(entries, multiple.id, judgement.level), multiple.note);
  }
  std::vector<SpeedRow> rows;
  for (Entry const& entry : entries) {
    if (Result const* const speed = resultNamed(entry, "speed")) {
      rows.push_back({entry.subject.name, speed->finding.nanoseconds});
    }
  }
  std::ranges::sort(rows, {}, [](SpeedRow const& row) { return row.nanoseconds.uniforms; });
  body += section("speed", "How fast are they?", Verdict::fact,
                  fmt::format("{} fills large arrays fastest, {} ns a value.", rows.front().name,
                              readable(rows.front().nanoseconds.uniforms, 2)),
                  responsive([&](Frame const& frame) { return speeds(frame, rows); }, 0),
                  "rand and randn in large requests, and one value of rand alone. " +
                      resultNamed(entries.front(), "speed")->finding.note);
  body += pValueSection(tests, judgement.level);
  body += fmt::format("</main>\n<footer>Made by tvrng {}.</footer>\n</div>\n", escaped(version));
  return document(fmt::format("{} generators: report", entries.size()), body);
}

}  // namespace report
