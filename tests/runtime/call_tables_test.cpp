// The tables of calls in tests/runtime/calls: what the host language's calls of the library give,
// and what they refuse. A table holds blocks, each played in a machine of its own:
//
//   # comment
//   @ title
//   with a | b                   the block once for each such line, with $1, $2 for its fields
//   statement                    succeeds
//   statement -> 2x3 double      ... and has a value of this size and class; "nothing" for none
//   statement => value           ... and the value that this expression has
//   statement ~~ id(a|b), ...    ... and issues these warnings, "*" for any
//   statement !! id @2 (a|b)     is refused for argument 2 (0: for none) with these arguments of
//   the
//                                error; moves no stream, and leaves the global one what it is
//   function *! {1, 'a'}         with these arguments is refused without a trace, whichever of its
//                                requests for memory fails
//
// Only the statements with "~~" issue warnings.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "builtins/stream_methods.h"
#include "embedded_host/allocator.h"
#include "tests/support/calls.h"
#include "tests/support/data_folder.h"
#include "tests/support/identifiers.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/streams.h"
#include "vmstate/global_stream.h"
#include "vmstate/legacy_mode.h"

namespace {

using namespace testing_support;

struct Line {
  int number;
  std::string text;
};

struct Block {
  std::string table, title;
  std::vector<Line> lines;
};
void PrintTo(Block const& block, std::ostream* out) { *out << block.table << ": " << block.title; }

std::vector<std::string> split(std::string const& text, std::string const& separator) {
  std::vector<std::string> parts;
  std::size_t at = 0;
  for (std::size_t end; (end = text.find(separator, at)) != std::string::npos;
       at = end + separator.size())
    parts.push_back(text.substr(at, end - at));
  parts.push_back(text.substr(at));
  for (std::string& part : parts) {
    part.erase(0, part.find_first_not_of(' '));
    part.erase(part.find_last_not_of(' ') + 1);
  }
  return parts;
}

Block withFields(Block block, std::string const& fields) {
  block.title += " (" + fields + ")";
  std::vector<std::string> const values = split(fields, "|");
  for (Line& line : block.lines)
    for (std::size_t at; (at = line.text.find('$')) != std::string::npos;)
      line.text.replace(at, 2, values.at(static_cast<std::size_t>(line.text.at(at + 1) - '1')));
  return block;
}

std::vector<Block> allBlocks() {
  std::vector<Block> blocks;
  for (auto const& entry : std::filesystem::directory_iterator(dataFolder() + "/runtime/calls")) {
    std::ifstream file(entry.path());
    std::vector<std::pair<Block, std::vector<std::string>>> parts;
    int number = 0;
    for (std::string text; std::getline(file, text);) {
      ++number;
      if (text.empty() || text[0] == '#') continue;
      if (text.starts_with("@ "))
        parts.push_back({{entry.path().stem(), text.substr(2), {}}, {}});
      else if (text.starts_with("with "))
        parts.back().second.push_back(text.substr(5));
      else
        parts.back().first.lines.push_back({number, text});
    }
    for (auto const& [block, variants] : parts) {
      if (variants.empty()) blocks.push_back(block);
      for (std::string const& fields : variants) blocks.push_back(withFields(block, fields));
    }
  }
  std::ranges::sort(blocks, {}, [](Block const& block) {
    return std::pair(block.table, block.lines.front().number);
  });
  return blocks;
}

class CallTable : public VmTest, public testing::WithParamInterface<Block> {
 protected:
  CallTable() {
    vm.context().setWarningSink([this](auto const& id, std::string const& text) {
      warnings_ += (warnings_.empty() ? "" : ", ") + id.identifier() + "(" + argumentsOf(id) + ")";
      EXPECT_NE(text, "");
    });
    // What only the host itself can call or make.
    embedded_host::Functions& functions = vm.context().functions();
    functions.add("native_create", RandStream::create);
    functions.add("native_deletefcn", RandStream::deletefcn);
    functions.add("native_getset", RandStream::getset);
    functions.add("native_reset", RandStream::resetFcn);
    functions.add("native_restore", RandStream::restoreFcn);
    functions.add("native_advance", RandStream::advance);
    functions.add("native_rand", RandStream::randstreamRand);
    functions.add("native_randn", RandStream::randn);
    functions.add("native_randi", RandStream::randi);
    functions.add("native_randperm", RandStream::randperm);
    functions.add("getLegacyRandStream", getLegacyRandStream);
    functions.add("getsetGlobalRandStream", getsetGlobalRandStream);
    functions.add("clearGlobalRandStreamIfMatches", clearGlobalRandStreamIfMatches);
    functions.add("settings", [this](int, txArrayPtr*, int, txArray const** prhs) {
      std::string const file = folder_.path() / "settings.toml";
      std::ofstream(file) << textOf(*prhs[0]);
      vm.context().useSettingsFile(file);
      call(clearGlobalRandStream, {}, 0);
    });
    functions.add("classId", [](int, txArrayPtr* plhs, int, txArray const** prhs) {
      plhs[0] = embedded_host::makeClassIdentifier(*prhs[0]->scalarText());
    });
    functions.add("missingString", [](int, txArrayPtr* plhs, int, txArray const**) {
      plhs[0] = embedded_host::makeMissingString();
    });
  }

  // Where the global stream, the legacy stream and those of all variables stand.
  std::string snapshot() {
    std::ostringstream out;
    auto const add = [&](randstream const& stream) {
      out << stateOf(stream) << stream.getRandnAlg() << stream.antithetic()
          << stream.fullPrecision() << stream.getSubstream() << ' ';
    };
    out << mrGetGlobalStream() << numbers(*call(inLegacyMode)).front() << ' ';
    add(*mrGetGlobalStream());
    txArrayPtr const handle = call(getLegacyRandStream);
    Handle const legacy(txShare(*handle));
    add(*mrGetCPPRandStreamFromTxArray(objectOf(legacy).get()));
    txArrayPtr const names = vm.evaluate("who");
    for (std::uint64_t i = 0; i < names->numel(); ++i) {
      txArrayPtr const value = vm.evaluate(textOf(*names->cell(i)));
      if (value->classID() == txClassObject && txGetProperty(*value, "Type"))
        identifierOf([&] { add(*mrGetCPPRandStreamFromTxArray(value.get())); });
    }
    return out.str();
  }

  void expectRefusal(std::string const& statement, std::string const& expected) {
    std::string const before = snapshot();
    std::uint64_t const drawn = randstream::drawnInThread();
    try {
      vm.evaluate(statement);
      ADD_FAILURE() << "accepted";
    } catch (language::SourceError const& error) {
      auto const& id = error.cause().GetBaseMsgIDObj();
      std::string told = error.identifier();
      if (expected.find('@') != std::string::npos)
        told += " @" + std::to_string(id.faultyArgument());
      if (expected.find('(') != std::string::npos) told += " (" + argumentsOf(id) + ")";
      EXPECT_EQ(told, expected);
    }
    EXPECT_EQ(randstream::drawnInThread(), drawn);
    EXPECT_EQ(snapshot(), before);
  }

  void expectRefusalForMemory(std::string const& function, std::string const& list) {
    txArrayPtr const cell = vm.evaluate(list);
    std::vector<txArray const*> arguments;
    for (std::uint64_t i = 0; i < cell->numel(); ++i) arguments.push_back(cell->cell(i));
    for (std::uint64_t k = 1; k < 500; ++k) {
      vm.evaluate("clearGlobalRandStream; RandStream.global();");
      std::string const before = snapshot();
      auto const blocks = embedded_host::allocationCounts().liveBlocks;
      std::uint64_t const drawn = randstream::drawnInThread();
      embedded_host::FailingAllocation const failing(k);
      std::string const error = identifierOf([&] { vm.call(function, arguments, 0); });
      EXPECT_EQ(error, failing.happened() ? "TALVOR:nomem" : "no error") << "request " << k;
      if (!failing.happened()) {
        EXPECT_GT(k, 1U) << "asks for no memory";
        return;
      }
      ASSERT_EQ(embedded_host::allocationCounts().liveBlocks, blocks) << "request " << k;
      ASSERT_EQ(randstream::drawnInThread(), drawn) << "request " << k;
      ASSERT_EQ(snapshot(), before) << "request " << k;
    }
    ADD_FAILURE() << "asks for memory without end";
  }

  void play(std::string const& line) {
    auto const is = [&](char const* mark) { return line.find(mark) != std::string::npos; };
    for (char const* mark : {" !! ", " *! ", " -> ", " => ", " ~~ "}) {
      if (!is(mark)) continue;
      auto const parts = split(line, mark);
      if (mark[1] == '*') return expectRefusalForMemory(parts[0], parts[1]);
      if (mark[1] == '!') return expectRefusal(parts[0], parts[1]);
      txArrayPtr const value = vm.evaluate(parts[0]);
      if (mark[1] == '~') {
        std::string const warnings = std::exchange(warnings_, {});
        EXPECT_EQ(warnings, parts[1] == "*" && !warnings.empty() ? warnings : parts[1]);
      } else if (mark[1] == '-') {
        EXPECT_EQ(value ? shapeOf(*value) : "nothing", parts[1]);
      } else {
        txArrayPtr const expected = vm.evaluate(parts[1]);
        ASSERT_TRUE(value);
        EXPECT_TRUE(txToLogical(*vm.call("same", {value.get(), expected.get()})))
            << shapeOf(*value) << " "
            << (value->isText() ? textOf(*value) : testing::PrintToString(numbers(*value)));
      }
      return;
    }
    vm.evaluate(line);
  }

  ScratchFolder folder_;
  std::string warnings_;
};

TEST_P(CallTable, HoldsInAMachineOfItsOwn) {
  for (auto const& [number, text] : GetParam().lines) {
    SCOPED_TRACE(GetParam().table + ".txt:" + std::to_string(number) + ": " + text);
    try {
      play(text);
    } catch (language::SourceError const& error) {
      ADD_FAILURE() << error.identifier() << ": " << error.what();
    }
    EXPECT_EQ(std::exchange(warnings_, {}), "");
  }
}

INSTANTIATE_TEST_SUITE_P(Tables, CallTable, testing::ValuesIn(allBlocks()));

}  // namespace
