#pragma once

#include <string>

namespace shell {

// One line a generator of the registry: period, streams, substreams, normal method of its own, and
// what a jump ahead costs on this machine, now.
std::string generatorsTable(int width);

}  // namespace shell
