#pragma once

// The HTML around the drawings.

#include <functional>
#include <string>
#include <string_view>

#include "report/plots.h"

namespace report {

inline constexpr double kWide = 680;
inline constexpr double kNarrow = 340;

enum class Verdict { good, bad, fact };

// "In the band" and so on, as a small mark with a text for those who do not see it.
std::string verdictMark(Verdict verdict);

// The drawing for wide and for narrow screens; the style sheet shows one of them.
std::string responsive(std::function<std::string(Frame const&)> const& draw, double level);

// A section of a page: heading, verdict, drawings, how to read them.
std::string section(std::string_view id, std::string_view title, Verdict verdict,
                    std::string_view verdictText, std::string_view drawings, std::string_view note);

// The whole file.
std::string document(std::string_view title, std::string_view body);

}  // namespace report
