// The page of one generator.

#include <fmt/format.h>

#include <cmath>

#include "report/p_value_section.h"
#include "report/page.h"
#include "report/report.h"

namespace report {

namespace {

std::string pText(double p) {
  if (p >= 0.01) return fmt::format("{:.2f}", p);
  return p < 1e-300 ? "<\u00a0" + powerText(10, -300) : readable(p, 2);
}

Verdict verdictOf(Result const& result, bool red) {
  if (red) return Verdict::bad;
  return result.finding.isFact ? Verdict::fact : Verdict::good;
}

std::string contents(std::vector<Result> const& results, Judgement const& judgement) {
  std::string out = "<nav aria-label=\"Plots\">\n";
  std::string_view group;
  for (std::size_t i = 0; i < results.size(); ++i) {
    Plot const& plot = *results[i].plot;
    if (group != plot.group) {
      out += fmt::format("{}<b>{}</b>\n<ul>\n", group.empty() ? "" : "</ul>\n", plot.group);
      group = plot.group;
    }
    double const p = judgement.smallest[i];
    out += fmt::format("<li>{}<a href=\"#{}\">{}</a><span class=\"p\">{}</span></li>\n",
                       verdictMark(verdictOf(results[i], judgement.red[i])), plot.id,
                       escaped(plot.title), std::isnan(p) ? "" : "p " + pText(p));
  }
  return out + fmt::format(
                   "</ul>\n<b>All together</b>\n<ul><li>{}<a href=\"#p-values\">Are the "
                   "p-values themselves uniform?</a><span></span></li></ul>\n</nav>\n",
                   verdictMark(judgement.redCount() ? Verdict::bad : Verdict::good));
}

std::string summary(Subject const& subject, std::vector<Result> const& results,
                    Judgement const& judgement) {
  std::size_t const red = judgement.redCount();
  std::string text;
  if (red == 0) {
    text = fmt::format("{} Nothing unusual: all {} tests lie where a perfect source would.",
                       verdictMark(Verdict::good), judgement.tests);
  } else {
    std::string names;
    for (std::size_t i = 0; i < results.size(); ++i) {
      if (!judgement.red[i]) continue;
      names += fmt::format("{}<a href=\"#{}\">{}</a>", names.empty() ? "" : ", ",
                           results[i].plot->id, results[i].plot->id);
    }
    text = fmt::format("{} {} of {} plots lie outside: {}.", verdictMark(Verdict::bad), red,
                       results.size(), names);
  }
  return fmt::format(
      "<header>\n<h1>{}</h1>\n<p class=\"lead\">Seed {}{}</p>\n<p class=\"summary\">{}</p>\n"
      "<p class=\"explain\">Every plot shows the generator in blue and, shaded, where a perfect "
      "source would lie. A verdict turns red when its test is less likely than {} to be chance; "
      "over all {} tests, one page in {} of a perfect source has a red verdict.</p>\n</header>\n",
      escaped(subject.name), subject.seed, subject.hasSubstreams ? ", stream 1, substream 1" : "",
      text, readable(judgement.level, 2), judgement.tests, readable(1 / kFamilyError));
}

}  // namespace

std::string reportPage(Subject const& subject, std::vector<Result> const& results,
                       std::string_view version) {
  Judgement const judgement = judge(results);
  std::string body = "<div class=\"page\">\n" + summary(subject, results, judgement) +
                     contents(results, judgement) + "<main>\n";
  std::string_view group;
  std::vector<Test> tests;
  for (std::size_t i = 0; i < results.size(); ++i) {
    auto const& [plot, finding] = results[i];
    if (group != plot->group) {
      group = plot->group;
      body += fmt::format("<h2>{}</h2>\n", group);
    }
    Verdict const verdict = verdictOf(results[i], judgement.red[i]);
    std::string text = verdict == Verdict::bad ? finding.bad : finding.good;
    std::string ps;
    for (Test const& test : finding.tests) {
      ps +=
          fmt::format("{}{}: p\u00a0{}", ps.empty() ? " Tests: " : "; ", test.name, pText(test.p));
      tests.push_back(test);
    }
    body += section(plot->id, plot->title, verdict, text, responsive(finding.draw, judgement.level),
                    finding.note + ps + (ps.empty() ? "" : "."));
  }
  body += "<h2>All together</h2>\n" + pValueSection(tests, judgement.level);
  body += fmt::format(
      "</main>\n<footer>Made by tvrng {}. The same generator, seed and version give the same plots "
      "everywhere, the times apart.</footer>\n</div>\n",
      escaped(version));
  return document(subject.name + ", seed " + std::to_string(subject.seed) + ": report", body);
}

}  // namespace report
