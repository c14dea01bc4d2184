// What the native methods ask of an object of a host whose class is not the runtime's own.

#include <gtest/gtest.h>

#include "builtins/stream_methods.h"
#include "embedded_host/object_system.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

namespace {

using namespace testing_support;

// An object with these properties.
txArrayPtr objectWith(std::vector<std::pair<char const*, txArray const*>> const& properties) {
  auto definition = std::make_shared<embedded_host::ClassDefinition>();
  definition->name = "Stream";
  for (auto const& [name, value] : properties) definition->properties.push_back({.name = name});
  txArrayPtr object = embedded_host::makeObject(definition);
  for (auto const& [name, value] : properties) embedded_host::setProperty(*object, name, *value);
  return object;
}

txArrayPtr emptyOf(txClassID classID) {
  return txCreateUninitialized(std::array<std::uint64_t, 2>{1, 0}, classID);
}

TEST_F(VmTest, ResetNeedsAnOwnSeedAndAHandle) {
  txArrayPtr const handle =
      call(RandStream::create, args("mrg32k3a", typed<std::uint64_t>(1), typed<std::uint64_t>(1),
                                    typed<std::uint32_t>(7), emptyMatrix()));
  txArrayPtr const seed = typed<std::uint32_t>(7), number = typed<double>(7),
                   none = emptyOf(txClassUint32), noHandle = emptyOf(txClassUint64);
  struct Row {
    txArrayPtr object;
    char const* identifier;
  };
  Row rows[] = {
      {objectWith({{"StreamID", handle.get()}}), "TALVOR:RandStream:reset:BadSeed"},
      {objectWith({{"StreamID", handle.get()}, {"Seed", none.get()}}),
       "TALVOR:RandStream:reset:BadSeed"},
      {objectWith({{"StreamID", handle.get()}, {"Seed", number.get()}}),
       "TALVOR:RandStream:reset:BadSeed"},
      {objectWith({{"Seed", seed.get()}}), "TALVOR:RandStream:InvalidHandle"},
      {objectWith({{"StreamID", noHandle.get()}, {"Seed", seed.get()}}),
       "TALVOR:RandStream:InvalidHandle"},
      {objectWith({{"StreamID", number.get()}, {"Seed", seed.get()}}),
       "TALVOR:RandStream:InvalidHandle"},
      {objectWith({{"StreamID", handle.get()}, {"Seed", seed.get()}}), "no error"},
  };
  randstream& stream = *mrGetCPPRandStreamFromTxArray(std::end(rows)[-1].object.get());
  std::size_t const fresh = stateOf(stream);
  double drawn = 0;
  stream.randuFcn(&drawn, 1);
  std::size_t const before = stateOf(stream);
  for (Row const& row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_EQ(stateOf(stream), before);
    EXPECT_EQ(identifierOf([&] { call(RandStream::resetFcn, args(txShare(*row.object)), 0); }),
              row.identifier);
  }
  EXPECT_EQ(stateOf(stream), fresh);
  call(RandStream::deletefcn, args(txShare(*handle)), 0);
}

}  // namespace
