#include "report/page.h"

#include <fmt/format.h>

#include "report/page_style.h"

namespace report {

namespace {

struct Mark {
  char const* style;
  char const* sign;
  char const* spoken;
};
constexpr Mark kMarks[] = {
    {"good", "✓", "as expected"}, {"bad", "✕", "not as expected"}, {"fact", "·", "a fact"}};

}  // namespace

std::string verdictMark(Verdict verdict) {
  Mark const& mark = kMarks[static_cast<int>(verdict)];
  return fmt::format(R"(<span class="sign {}" role="img" aria-label="{}">{}</span>)", mark.style,
                     mark.spoken, mark.sign);
}

std::string responsive(std::function<std::string(Frame const&)> const& draw, double level) {
  return "<div class=\"wide\">" + draw({kWide, level}) + "</div><div class=\"narrow\">" +
         draw({kNarrow, level}) + "</div>";
}

std::string section(std::string_view id, std::string_view title, Verdict verdict,
                    std::string_view verdictText, std::string_view drawings,
                    std::string_view note) {
  return fmt::format(
      "<section id=\"{}\" class=\"plot\" data-verdict=\"{}\">\n<h3>{}</h3>\n"
      "<p class=\"verdict {}\">{} {}</p>\n<figure>{}\n<figcaption>{}</figcaption></figure>\n"
      "</section>\n",
      id, kMarks[static_cast<int>(verdict)].style, escaped(title),
      kMarks[static_cast<int>(verdict)].style, verdictMark(verdict), escaped(verdictText), drawings,
      escaped(note));
}

std::string document(std::string_view title, std::string_view body) {
  // The policy lets the browser fetch nothing at all.
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
      "'unsafe-inline'; img-src data:\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<link rel=\"icon\" href=\"data:,\">\n"
      "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n{}</body>\n</html>\n",
      escaped(title), kPageStyle, body);
}

}  // namespace report
