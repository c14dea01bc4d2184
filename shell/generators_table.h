#pragma once

#include <string>

namespace shell {

// One line a generator of the registry: short name, period, streams, substreams of each, what a
// jump ahead costs on this machine now ("-": it draws its way there), and the normal method of its
// own.
std::string generatorsTable();

}  // namespace shell
