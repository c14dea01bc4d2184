#pragma once

// Prose on a terminal, broken at blanks.

#include <cstddef>
#include <string>
#include <string_view>

namespace shell {

// `text` behind `head` on the first line and from column `indent` on in the next ones, none of them
// wider than `width`; a word that is longer is cut. Ends with a line feed.
std::string wrapped(std::string_view head, std::string_view text, std::size_t indent,
                    std::size_t width);

}  // namespace shell
