#include "rng/snapshot.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "rng/mr_functions.h"
#include "tests/support/data_folder.h"
#include "tests/support/identifiers.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using testing_support::argumentsOf;
using testing_support::identifierOf;
using Stream = std::unique_ptr<randstream>;

Stream make(char const* type, std::uint64_t numStreams = 1, std::uint64_t index = 0) {
  return Stream(mrCreateRNGStream(type, numStreams, index, 7, nullptr, 0));
}

// What a stream does next, its settings included.
std::vector<double> futureOf(randstream& stream) {
  std::vector<double> values(40);
  stream.randnFcn(values.data(), 11, false);
  stream.randuFcn(values.data() + 11, 20);
  stream.reset(stream.seed());
  stream.randnFcn(values.data() + 31, 4, false);
  values[35] = static_cast<double>(stream.getSubstream());
  values[36] = static_cast<double>(stream.streamIndex());
  values[37] = static_cast<double>(stream.numStreams());
  values[38] = stream.seed();
  values[39] = stream.antithetic() + 2 * stream.fullPrecision();
  return values;
}

// The text with a line put in place of another, and its checksum made to fit again.
std::string edited(std::string text, std::string const& line, std::string const& by) {
  text.resize(text.rfind("crc32"));
  std::size_t const at = text.find(line + '\n');
  EXPECT_NE(at, std::string::npos) << line;
  text.replace(at, line.size(), by);
  std::uint32_t crc = ~0U;
  for (unsigned char const c : text) {
    crc ^= c;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  char last[16];
  std::snprintf(last, sizeof last, "crc32 %08x", ~crc);
  return text + last;
}

// Those of tools/snapshots.tv, each with what its stream draws next in units of 2^-52.
TEST(KeptSnapshots, GoOnAsWhenTheyWereTaken) {
  std::ifstream file(dataFolder() + "/rng/snapshots.txt");
  std::size_t count = 0;
  std::string text;
  for (std::string line; std::getline(file, line);) {
    text += line + '\n';
    if (!line.starts_with("crc32")) continue;
    Stream const stream(createFromSnapshot(text));
    EXPECT_EQ(takeSnapshot(*stream) + '\n', text);
    double drawn[3];
    stream->randuFcn(drawn, 1);
    stream->randnFcn(drawn + 1, 1, false);
    stream->randnFcn(drawn + 2, 1, false);
    std::getline(file, line);
    std::istringstream numbers(line);
    for (double const x : drawn) {
      std::int64_t expected = 0;
      numbers >> expected;
      ASSERT_EQ(std::llround(x * 0x1p52), expected) << text.substr(0, 200);
    }
    ++count;
    text.clear();
  }
  // Three methods in four modes, and the three older generators.
  EXPECT_EQ(count, 12 * tfl_rng::generators().size() + 3);
}

class Snapshot : public testing::TestWithParam<char const*> {};

TEST_P(Snapshot, HoldsAllThatAStreamDependsOn) {
  for (char const* const method : {"", "Polar", "Inversion", "Ziggurat"}) {
    Stream const stream = make(GetParam());
    Stream const other = make(GetParam());
    stream->reset(4294967295U);
    if (*method) stream->setRandnAlg(method);
    stream->setAntithetic(true);
    stream->setFullPrecision(false);
    double drawn[7];
    stream->randnFcn(drawn, 7, false);  // an odd count leaves a Polar value pending

    std::string const text = takeSnapshot(*stream);
    Stream const copy(createFromSnapshot(text));
    EXPECT_EQ(takeSnapshot(*copy), text);
    restoreSnapshot(*other, text);
    std::vector<double> const expected = futureOf(*stream);
    EXPECT_EQ(futureOf(*copy), expected) << method;
    EXPECT_EQ(futureOf(*other), expected) << method;
    restoreSnapshot(*stream, text);
    EXPECT_EQ(takeSnapshot(*stream), text);
  }
}

constexpr auto kTypes = tfl_rng::generatorNames();
INSTANTIATE_TEST_SUITE_P(Generators, Snapshot, testing::ValuesIn(kTypes.begin(), kTypes.end()));
INSTANTIATE_TEST_SUITE_P(OtherSpelling, Snapshot, testing::Values("MRG32K3A"));

TEST(Snapshots, KeepTheStreamsPlaceInItsFamily) {
  for (char const* const type : {"mlfg6331_64", "mrg32k3a", "philox4x32-10", "threefry4x64_20"}) {
    Stream const stream = make(type, 5, 3);
    Stream const other = make(type);
    stream->setSubstream(9);
    stream->advance(1'000'003);
    std::string const text = takeSnapshot(*stream);
    restoreSnapshot(*other, text);
    EXPECT_STREQ(other->generatorType(), type);
    EXPECT_EQ(other->getSubstream(), 9U);
    EXPECT_EQ(futureOf(*other), futureOf(*stream));
    for (Stream const* const one : {&other, &stream}) {
      (*one)->setSubstream(2);
      (*one)->advance(1'000'003);
    }
    EXPECT_EQ(futureOf(*other), futureOf(*stream)) << type;
  }
}

TEST(Snapshots, DamageIsRefusedWhereverItIsAndChangesNothing) {
  Stream const stream = make("philox4x32_10");
  std::string const other = takeSnapshot(*make("philox4x32_10", 4, 2));
  std::string const before = takeSnapshot(*stream);
  for (std::size_t i = 0; i < other.size(); ++i) {
    std::string damaged = other;
    damaged[i] ^= 1;
    EXPECT_NE(identifierOf([&] { restoreSnapshot(*stream, damaged); }), "no error") << i;
    EXPECT_NE(identifierOf([&] { restoreSnapshot(*stream, other.substr(0, i)); }), "no error") << i;
  }
  EXPECT_EQ(takeSnapshot(*stream), before);
}

struct Refusal {
  char const* line;
  char const* by;
  char const* identifier;
};

TEST(Snapshots, RefusalsSayWhatIsWrongAndChangeNothing) {
  Stream const stream = make("mrg32k3a");
  stream->setRandnAlg("Inversion");
  std::string const text = takeSnapshot(*stream);
  for (auto const& row : std::vector<std::pair<std::string, char const*>>{
           {"", "NotASnapshot"},
           {"tvmathrng-snapshot x\n", "NotASnapshot"},
           {text.substr(0, 200), "Truncated"},
           {text.substr(0, text.size() - 1), "Truncated"},
           {text + "0", "Damaged"},
           {text + " \r\n\n", "no error"},
           {"tvmathrng-snapshot 2\nwhatever comes then\n", "OtherVersion"}})
    EXPECT_THAT(identifierOf([&] { restoreSnapshot(*stream, row.first); }),
                testing::EndsWith(row.second));

  constexpr char kState[] = "00000007 00000000";
  Refusal const rows[] = {
      {"generator mrg32k3a", "generator nothing", "RandStream:snapshot:OtherGenerator"},
      {"seed 7", "seed 4294967296", "RandStream:snapshot:InvalidLine"},
      {"seed 7", "seed -1", "RandStream:snapshot:InvalidLine"},
      {"seed 7", "seed", "RandStream:snapshot:InvalidLine"},
      {"streams 1", "streams 9223372036854775809", "RandStream:mrg32k3a:TooManyStreams"},
      {"stream 1", "stream 0", "RandStream:snapshot:InvalidLine"},
      {"substream 1", "substream 2251799813685250",
       "RandStream:mrg32k3a:SubstreamsIndexOutOfRange"},
      {"antithetic false", "antithetic no", "RandStream:snapshot:InvalidLine"},
      {"full-precision true", "fullprecision true", "RandStream:snapshot:InvalidLine"},
      {"normals Inversion", "normals Guess", "RandStream:set:UnknownRandnAlg"},
      {"pending none", "pending 3ff00000", "RandStream:snapshot:InvalidLine"},
      {"pending none", "pending 7ff8000000000000", "RandStream:snapshot:InvalidLine"},
      {"components 1", "components 2", "RandStream:snapshot:InvalidLine"},
      {"component uint32 12", "component uint64 12", "RandStream:snapshot:InvalidLine"},
      {"component uint32 12", "component uint32 12\n", "RandStream:snapshot:InvalidLine"},
      {"component uint32 12", "component uint32 13", "RandStream:snapshot:InvalidLine"},
      {"component uint32 12", kState, "RandStream:snapshot:InvalidLine"},
  };
  for (Refusal const& row : rows)
    EXPECT_EQ(identifierOf([&] { restoreSnapshot(*stream, edited(text, row.line, row.by)); }),
              std::string("TALVOR:") + row.identifier)
        << row.by;

  std::size_t const state = text.find("component uint32 12\n") + 20;
  std::string const first = text.substr(state, text.find('\n', state) - state);
  for (auto const& row : std::vector<std::pair<std::string, char const*>>{
           {"ffffffff" + first.substr(8), "TALVOR:RandStream:mrg32k3a:InvalidState"},
           {first.substr(1), "TALVOR:RandStream:snapshot:InvalidLine"},
           {first + " ", "TALVOR:RandStream:snapshot:InvalidLine"},
           {first + "\n" + first, "TALVOR:RandStream:snapshot:InvalidLine"},
           {"0000000g" + first.substr(8), "TALVOR:RandStream:snapshot:InvalidLine"}})
    EXPECT_EQ(identifierOf([&] { restoreSnapshot(*stream, edited(text, first, row.first)); }),
              row.second);
  std::string const lastLine = text.substr(0, text.rfind("\ncrc32"));
  std::string const last = lastLine.substr(lastLine.rfind('\n') + 1);
  for (char const* more : {"\n", "\npending none", "\ncomponent uint32 12"})
    EXPECT_EQ(identifierOf([&] { restoreSnapshot(*stream, edited(text, last, last + more)); }),
              "TALVOR:RandStream:snapshot:InvalidLine");

  EXPECT_EQ(takeSnapshot(*stream), text);
  EXPECT_EQ(identifierOf([&] { createFromSnapshot(edited(text, rows[0].line, rows[0].by)); }),
            "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT_EQ(argumentsOf([&] { restoreSnapshot(*make("mt19937ar"), text); }), "mrg32k3a|mt19937ar");
}

}  // namespace
