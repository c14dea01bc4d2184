#include "golden/cases.h"

#include <cmath>
#include <iterator>
#include <string>
#include <vector>

#include "embedded_host/array.h"
#include "rng/element_bits.h"
#include "rng/generator_names.h"
#include "rng/ziggurat_tables.h"
#include "runtime/vm.h"
#include "tfl_rng/core_ziggurat_tables.h"
#include "tfl_rng/elementary.h"
#include "tfl_rng/normal_quantile.h"
#include "tfl_rng/ziggurat128.h"

namespace golden {

namespace {

constexpr char kLegacy[] = "legacy";
constexpr char kLibrary[] = "library";
constexpr char kLanguage[] = "language";

// Whom a case is for.
enum Family : unsigned { kSingle = 1, kSubstreams = 2, kOld = 4 };
constexpr unsigned kOwn = kSingle | kSubstreams;
constexpr unsigned kAll = kOwn | kOld;

// A program of the host language whose value is hashed. Before it, s is a stream that has drawn a
// little, so that no block of a generator begins where the draws do; n is long enough for every
// branch of the methods for normals to be taken, `large` for every generator's parallel fill.
struct Case {
  char const* name;
  unsigned families;
  char const* program;
};

// 200 operations of every kind in turn, in an order that changes, and what is drawn after each.
constexpr char kOperations[] =
    "x = []; t = s.State; "
    "for k = 1:200; "
    "j = mod(7*k + floor(k/17),17); "
    "if j == 0, x = [x rand(s,1,3)]; "
    "elseif j == 1, x = [x double(rand(s,1,3,'single'))]; "
    "elseif j == 2, x = [x randn(s,1,3)]; "
    "elseif j == 3, x = [x randi(s,1000,1,3)]; "
    "elseif j == 4, x = [x double(randi(s,9,1,3,'int8'))]; "
    "elseif j == 5, x = [x randperm(s,7)]; "
    "elseif j == 6, x = [x randperm(s,40,9)]; "
    "elseif j == 7, x = [x randperm(s,12,9)]; "
    "elseif j == 8, s.RandnAlg = 'Polar'; "
    "elseif j == 9, s.RandnAlg = 'Inversion'; "
    "elseif j == 10, s.RandnAlg = 'Ziggurat'; "
    "elseif j == 11, s.Antithetic = ~s.Antithetic; "
    "elseif j == 12, s.FullPrecision = ~s.FullPrecision; "
    "elseif j == 13, advance(s,k); "
    "elseif j == 14, t = s.State; "
    "elseif j == 15, s.State = t; "
    "else, y = snapshot(s); q = rand(s,1,k); restore(s,y); "
    "end; "
    "if mod(k,50) == 0, reset(s); end; "
    "x = [x rand(s) randn(s)]; "
    "end; x";

constexpr Case kCases[] = {
    {"rand", kAll, "rand(s,1,n)"},
    {"rand-single", kAll, "rand(s,1,n,'single')"},
    {"rand-complex", kAll, "rand(s,1,n,'like',1i)"},
    {"rand-single-complex", kAll, "rand(s,1,n,'like',single(1i))"},
    {"rand-antithetic", kAll, "s.Antithetic = true; rand(s,1,n)"},
    {"rand-antithetic-single", kAll, "s.Antithetic = true; rand(s,1,n,'single')"},
    {"rand-reduced", kOwn, "s.FullPrecision = false; rand(s,1,n)"},
    {"rand-reduced-single", kOwn, "s.FullPrecision = false; rand(s,1,n,'single')"},
    {"rand-reduced-antithetic", kOwn, "s.FullPrecision = false; s.Antithetic = true; rand(s,1,n)"},
    {"rand-pieces", kAll,
     "[rand(s,1,1) rand(s,1,100) rand(s,1,101) rand(s,1,1023) rand(s,1,1025)]"},
    {"rand-large", kAll, "rand(s,1,large)"},
    {"rand-global", kAll, "RandStream.global(s); [rand(1,9) randn(1,9) randi(9,1,9) randperm(9)]"},
    {"after-reset", kAll, "reset(s); [rand(s,1,n) randn(s,1,n)]"},
    {"after-advance", kAll, "advance(s,100003); [rand(s,1,n) randn(s,1,n)]"},
    {"after-reduced-advance", kOwn, "s.FullPrecision = false; advance(s,100003); rand(s,1,n)"},
    {"after-far-advance", kSubstreams, "advance(s,2^50+12345); rand(s,1,n)"},
    {"after-4-gigabytes", kAll, "advance(s,2^29+12345); rand(s,1,n)"},
    {"after-64-gigabytes", kOwn, "advance(s,2^33+12345); rand(s,1,n)"},
    {"after-operations", kOwn, kOperations},
    {"rand-past-caches", kOwn,
     "x = rand(s,1,2^22+1001); [x(1:1001) x(2^21:2^21+1000) x(2^22-1000:2^22+1001)]"},
    {"after-substream", kSubstreams, "s.Substream = 3; rand(s,1,n)"},
    {"after-far-substream", kSubstreams,
     "s.Substream = 2^40+7; q = rand(s,1,5); s.Substream = 2^45; rand(s,1,n)"},
    {"after-state", kAll,
     "q = rand(s,1,1001); x = s.State; q = randn(s,1,n); s.State = x; rand(s,1,n)"},
    {"after-snapshot", kAll,
     "q = randn(s); t = RandStream.restore(snapshot(s)); [randn(t,1,n) rand(t,1,n)]"},
    {"other-seed", kOwn, "s = RandStream(type,'Seed',4294967295); [rand(s,1,n) randn(s,1,n)]"},
    {"seed-0", kOwn, "s = RandStream(type,'Seed',0); [rand(s,1,n) randn(s,1,n)]"},
    {"other-stream", kSubstreams,
     "s = RandStream(type,'Seed',7,'NumStreams',9,'StreamIndices',9); rand(s,1,n)"},
    {"randn", kAll, "randn(s,1,n)"},
    {"randn-single", kAll, "randn(s,1,n,'single')"},
    {"randn-complex", kAll, "randn(s,1,n,'like',1i)"},
    {"randn-single-complex", kAll, "randn(s,1,n,'like',single(1i))"},
    {"randn-antithetic", kAll, "s.Antithetic = true; randn(s,1,n)"},
    {"randn-antithetic-complex", kAll, "s.Antithetic = true; randn(s,1,n,'like',1i)"},
    {"randn-reduced", kOwn, "s.FullPrecision = false; randn(s,1,n)"},
    {"randn-large", kAll, "randn(s,1,large)"},
    {"randn-ziggurat", kOwn, "s.RandnAlg = 'Ziggurat'; randn(s,1,n)"},
    {"randn-ziggurat-single", kOwn, "s.RandnAlg = 'Ziggurat'; randn(s,1,n,'single')"},
    {"randn-ziggurat-reduced", kOwn,
     "s.RandnAlg = 'Ziggurat'; s.FullPrecision = false; randn(s,1,n)"},
    {"randn-polar", kOwn, "s.RandnAlg = 'Polar'; randn(s,1,n)"},
    {"randn-polar-pieces", kOwn,
     "s.RandnAlg = 'Polar'; [randn(s,1,1) randn(s,1,2) randn(s,1,101) randn(s,1,n)]"},
    {"randn-polar-reduced", kOwn, "s.RandnAlg = 'Polar'; s.FullPrecision = false; randn(s,1,n)"},
    {"randn-inversion", kOwn, "s.RandnAlg = 'Inversion'; randn(s,1,n)"},
    {"randn-inversion-single", kOwn, "s.RandnAlg = 'Inversion'; randn(s,1,n,'single')"},
    {"randn-inversion-reduced", kOwn,
     "s.RandnAlg = 'Inversion'; s.FullPrecision = false; randn(s,1,n)"},
    {"randi-double", kAll, "randi(s,[-2^51 2^51],1,n)"},
    {"randi-single", kAll, "randi(s,[0 2^25],1,n,'single')"},
    {"randi-logical", kAll, "randi(s,[0 1],1,n,'logical')"},
    {"randi-int8", kAll, "randi(s,[-200 200],1,n,'int8')"},
    {"randi-uint8", kAll, "randi(s,[-3 300],1,n,'uint8')"},
    {"randi-int16", kAll, "randi(s,[-40000 40000],1,n,'int16')"},
    {"randi-uint16", kAll, "randi(s,[0 65535],1,n,'uint16')"},
    {"randi-int32", kAll, "randi(s,[-2^31 2^31-1],1,n,'int32')"},
    {"randi-uint32", kAll, "randi(s,[0 2^32-1],1,n,'uint32')"},
    {"randi-antithetic", kAll, "s.Antithetic = true; randi(s,6,1,n)"},
    {"randi-reduced", kOwn, "s.FullPrecision = false; randi(s,1000003,1,n)"},
    {"randperm", kAll, "randperm(s,n)"},
    {"randperm-large", kAll, "randperm(s,large)"},
    {"randperm-shuffle", kAll, "randperm(s,n,n)"},
    {"randperm-sparse", kAll, "[randperm(s,n,1000) randperm(s,2^52,1000)]"},
    {"randperm-selection", kAll, "randperm(s,n,6000)"},
    {"seed-state", kOld, "rand('seed',5); q = rand; [rand('seed') rand(1,n)]"},
    {"state-state", kOld, "rand('state',5); q = rand; [rand('state')' rand(1,n)]"},
    {"twister-state", kOld, "rand('twister',5); q = rand; [double(rand('twister')') rand(1,n)]"},
    {"seed-normals", kOld, "randn('seed',5); q = randn; [randn('seed') randn(1,n)]"},
    {"seeds-0", kOld,
     "rand('seed',0); a = rand(1,99); rand('state',0); b = rand(1,99); rand('twister',0);"
     "c = rand(1,99); randn('seed',0); d = randn(1,99); randn('state',0); [a b c d randn(1,99)]"},
    {"state-normals", kOld, "randn('state',5); q = randn; [randn('state')' randn(1,n)]"},
};

constexpr char kBegin[] =
    "n = 10007; large = 150001; s = RandStream(type,'Seed',7,'NumStreams',4,'StreamIndices',2);"
    "q = rand(s,1,3);";
constexpr char kBeginSingle[] =
    "n = 10007; large = 150001; s = RandStream(type,'Seed',7); q = rand(s,1,3);";
// Every generator of the legacy stream is seeded, and the stream's mode set, as the case before may
// have left them otherwise.
constexpr char kBeginLegacy[] =
    "n = 10007; large = 150001; rand('seed',7); rand('state',7); randn('seed',7); randn('state',7);"
    "rand('twister',7); s = RandStream.global(); s.Antithetic = false; q = rand(s,1,3);";

unsigned familyOf(std::string_view generator) {
  tfl_rng::Generator const* const row = rng::generatorNamed(generator);
  return !row ? kOld : row->hasSubstreams() ? kSubstreams : kSingle;
}

// A machine for which what the user has set is of no account.
struct BareVm : runtime::Vm {
  BareVm() {
    context().useSettingsFile({});
    context().setWarningSink([](auto const&, std::string const&) {});
  }
  void takeValue(char const* name, char const* program, TakeRow const& take) {
    txArrayPtr const value = evaluate(program);
    Hash hash;
    hash.add(value->data(), static_cast<std::size_t>(value->numel()) * (value->isComplex() ? 2 : 1),
             embedded_host::elementBytes(value->classID()));
    take(name, hash.value());
  }
};

void computeDraws(std::string_view generator, TakeRow const& take) {
  unsigned const family = familyOf(generator);
  BareVm vm;
  vm.evaluate("type = '" + std::string(generator) + "';");
  for (Case const& row : kCases) {
    if ((row.families & family) == 0) continue;
    vm.evaluate(family == kOld ? kBeginLegacy : family == kSingle ? kBeginSingle : kBegin);
    vm.takeValue(row.name, row.program, take);
  }
}

// What the host language computes: the same everywhere as well. tests/shell/test_arithmetic.py
// computes those of the first group itself, from integers and fractions.
constexpr char kBeginLanguage[] =
    "k = 1:2000; y = mod(k*7919,10007)/10007; z = (mod(k*104729,20011)-10005)/2^7;"
    "a = int64(2)^59 + int64(k)*int64(1729382256910270); u = uint64(a)*3; c = complex(y,z);";
constexpr struct {
  char const* name;
  char const* program;
} kLanguageCases[] = {
    {"products", "a.*y"},
    {"quotients", "u./z"},
    {"sums", "a + z"},
    {"moduli", "mod(a,z)"},
    {"remainders", "rem(-a,y*1e6)"},
    {"running-sums", "cumsum(y)"},
    {"integer-sums", "cumsum(a - int64(2)^60)"},

    {"running-products", "cumprod(1 + z/2^20)"},
    {"statistics", "[mean(z) var(z) std(z) median(z) min(z) max(z)]"},
    {"ranges", "[0:0.1:100, 10:-0.3:-10, single(0):single(0.1):single(9)]"},
    {"integer-ranges", "int64(-9007199254740993):int64(4503599627370496):int64(2)^62/2^8"},
    {"complex", "[c.*(k - 3i), c./(k - 3i), c.^3]"},
    {"powers", "[z.^5, y.^-3, sqrt(y)]"},
    {"single", "[single(y).*single(z), single(y)./single(z), single(a)]"},
    {"matrix-product", "reshape(z,40,50)*reshape(y,50,40)"},
    {"small-integers", "[int8(z), int8(k).*z, int8(100)-int8(k)]"},
    {"sorted", "sort(z)"},
};

void computeLanguage(TakeRow const& take) {
  BareVm vm;
  vm.evaluate(kBeginLanguage);
  for (auto const& row : kLanguageCases) vm.takeValue(row.name, row.program, take);
}

// Doubles from every binary order of (0,1), a few hundred of each, and their mirror images near 1.
std::vector<double> anyUniforms() {
  std::vector<double> values;
  std::uint64_t weyl = 0;
  for (int exponent = -1074; exponent < 0; ++exponent) {
    for (int i = 0; i < (exponent < -60 ? 8 : 300); ++i) {
      weyl += 0x9E37'79B9'7F4A'7C15;
      double const x = std::ldexp(1 + static_cast<double>(weyl >> 12) * 0x1p-52, exponent);
      if (x > 0 && x < 1) values.push_back(x);
      if (x >= 0x1p-53 && x < 1) values.push_back(1 - x);
    }
  }
  std::erase(values, 1.0);
  return values;
}

template <class Elements>
void takeElements(TakeRow const& take, char const* name, Elements const& elements) {
  Hash hash;
  hash.add(std::data(elements), std::size(elements), sizeof elements[0]);
  take(name, hash.value());
}

void computeLibrary(TakeRow const& take) {
  std::vector<double> const uniforms = anyUniforms();
  auto const applied = [&](char const* name, auto function) {
    std::vector<double> values = uniforms;
    for (double& x : values) x = function(x);
    takeElements(take, name, values);
  };
  auto const inPlace = [&](char const* name, auto function) {
    std::vector<double> values = uniforms;
    function(values.data(), values.size());
    takeElements(take, name, values);
  };
  applied("log", tfl_rng::pinnedLog);
  inPlace("log-vector", tfl_rng::pinnedLogInPlace);
  // All arguments that normals are decided by, and beyond.
  applied("exp", [](double x) { return tfl_rng::pinnedExp(-0x1p7 * x); });
  applied("exp-near-0", [](double x) { return tfl_rng::pinnedExp(x - 0.5); });
  applied("quantile", tfl_rng::normalQuantile);
  inPlace("quantile-vector", tfl_rng::normalQuantileInPlace);
  takeElements(take, "ziggurat-x", ziggurat::kX);
  takeElements(take, "ziggurat-f", ziggurat::kF);
  takeElements(take, "core-ziggurat-x", tfl_rng::ziggurat::kX);
  takeElements(take, "core-ziggurat-f", tfl_rng::ziggurat::kF);
  auto const& tables = tfl_rng::Ziggurat128::tables();
  takeElements(take, "ziggurat128-inside", tables.inside);
  takeElements(take, "ziggurat128-width", tables.width);
  takeElements(take, "ziggurat128-height", tables.height);
}

}  // namespace

void Hash::add(void const* elements, std::size_t count, std::size_t elementBytes) {
  auto const* from = static_cast<unsigned char const*>(elements);
  std::uint64_t value = value_;
  for (std::size_t i = 0; i < count; ++i, from += elementBytes) {
    std::uint64_t word = element_bits::load(from, elementBytes);
    for (std::size_t byte = 0; byte < elementBytes; ++byte, word >>= 8)
      value = (value ^ (word & 255)) * 0x100'0000'01B3;
  }
  value_ = value;
}

std::span<char const* const> generators() {
  static std::vector<char const*> const names = [] {
    auto const own = tfl_rng::generatorNames();
    std::vector<char const*> all(own.begin(), own.end());
    all.insert(all.end(), {kLegacy, kLibrary, kLanguage});
    return all;
  }();
  return names;
}

void computeRows(std::string_view generator, TakeRow const& take) {
  if (generator == kLibrary) return computeLibrary(take);
  if (generator == kLanguage) return computeLanguage(take);
  computeDraws(generator, take);
}

}  // namespace golden
