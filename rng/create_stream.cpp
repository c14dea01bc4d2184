#include "rng/create_stream.h"

#include <string>

#include "errors/explained.h"
#include "errors/keys.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"

namespace rng {

std::unique_ptr<randstream> createStream(std::string_view generator, std::uint32_t seed,
                                         std::uint64_t index, std::uint64_t count) {
  namespace keys = TALVOR::RandStream::create;
  tfl_rng::Generator const* const row = rng::findGenerator(generator);
  if (!row) {
    errors::raiseExplained(keys::UnknownRNGType(std::string(generator)),
                           errors::didYouMean(rng::closestGenerator(generator)));
  }
  if (count == 0) errors::raise(keys::BadNumStreams());
  if (index >= count) {
    errors::raiseExplained(keys::BadStreamIndex(), "Counted from 0, index " +
                                                       std::to_string(index) + " is not below " +
                                                       std::to_string(count) + ".");
  }
  return std::unique_ptr<randstream>(mrCreateRNGStream(row->name, count, index, seed, nullptr, 0));
}

}  // namespace rng
