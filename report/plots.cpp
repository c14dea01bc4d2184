#include "report/plots.h"

namespace report {

namespace {

constexpr char const* kUniform = "Uniform values";
constexpr char const* kNormal = "Normal values";
constexpr char const* kTogether = "Values together";
constexpr char const* kWhole = "Whole numbers";
constexpr char const* kStreams = "Streams and machine";

// In the order of the page.
constexpr Plot kPlots[] = {
    {"density", kUniform, "Is every value equally likely?", measureDensity, false},
    {"distribution", kUniform, "Does the distribution stay on the diagonal?", measureEcdf, false},
    {"bits", kUniform, "Is every bit a fair coin?", measureBits, false},
    {"quantiles", kNormal, "Are normals normal, also far out?", measureQuantiles, false},
    {"seam", kNormal, "Does the ziggurat show its seam?", measureSeam, false},
    {"pairs", kTogether, "Does a value tell the next one?", measurePairs, false},
    {"strip", kTogether, "Do pairs lie on lines?", measureStrip, false},
    {"planes", kTogether, "Do triples lie on planes?", measurePlanes, false},
    {"autocorrelation", kTogether, "Does the stream remember?", measureAutocorrelation, false},
    {"neighbours", kTogether, "Do neighbours know each other?", measureNeighbours, false},
    {"integers", kWhole, "Are whole numbers fair?", measureIntegers, false},
    {"permutations", kWhole, "Does a permutation have favourites?", measurePermutations, false},
    {"map", kStreams, "Where do the streams lie?", measureStreamMap, false},
    {"equality", kStreams, "Are the bits the same everywhere?", measureEquality, true},
    {"speed", kStreams, "How fast is it?", measureSpeed, true},
};

}  // namespace

std::span<Plot const> plots() { return kPlots; }

}  // namespace report
