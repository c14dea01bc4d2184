#pragma once

// Help, whose texts stand in shell/help/: streams.txt has an entry for each function, property,
// option and command of random numbers, language.txt a row for each function of the language.

#include <string>
#include <string_view>

#include "language/session.h"

namespace shell {

// The help of a topic, in any case: its forms, arguments, what it draws, two examples that run as
// they stand and what else to look at; the list of all without a topic. A name that other systems
// have for something here leads to that. Raises a fault with the nearest topic for an unknown one.
std::string helpText(std::string_view topic, int width, language::Session const& session);

}  // namespace shell
