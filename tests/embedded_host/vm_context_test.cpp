#include "embedded_host/vm_context.h"

#include <gmock/gmock.h>

#include <set>
#include <thread>
#include <vector>

#include "host/messages.h"
#include "host/tdispatcher.h"
#include "host/usm.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;
using Store = foundation::usm::Detail<foundation::usm::scope::Tvm>;

using testing_support::identifierOf;

namespace {

struct A {};
struct B {};

// Records write their number here when they are destroyed.
std::vector<int> destroyed;
int made = 0;

void* makeRecord() { return new int(++made); }
void destroyRecord(void* record) noexcept {
  destroyed.push_back(*static_cast<int*>(record));
  delete static_cast<int*>(record);
}

class Records : public testing::Test {
 protected:
  Records() {
    destroyed.clear();
    made = 0;
  }
  std::size_t const a = Store::getNextID(typeid(A));
  std::size_t const b = Store::getNextID(typeid(B));
};

TEST_F(Records, AreMadeOncePerVmAndDestroyedNewestFirst) {
  {
    VmContext first, second;
    {
      EnterVm const inside(first);
      EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
      void* const record = Store::findOrInsert(a, typeid(A), makeRecord, destroyRecord);
      EXPECT_EQ(Store::findOrInsert(a, typeid(A), makeRecord, destroyRecord), record);
      EXPECT_EQ(Store::find(a, typeid(A)), record);
      EXPECT_EQ(Store::find(a, typeid(B)), nullptr);
      Store::findOrInsert(b, typeid(B), makeRecord, destroyRecord);
      EnterVm const other(second);
      EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
    }
    EXPECT_EQ(made, 2);
    EXPECT_TRUE(destroyed.empty());
  }
  EXPECT_THAT(destroyed, ElementsAre(2, 1));
}

TEST_F(Records, EraseDestroysAtOnceAndOnlyWhatIsThere) {
  VmContext vm;
  EnterVm const inside(vm);
  Store::erase(a, typeid(A));
  Store::findOrInsert(a, typeid(A), makeRecord, destroyRecord);
  Store::erase(a, typeid(A));
  EXPECT_THAT(destroyed, ElementsAre(1));
  EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
}

TEST_F(Records, NothingStaysWhenMakingFails) {
  VmContext vm;
  EnterVm const inside(vm);
  Store::Maker const fail = []() -> void* { throw std::bad_alloc(); };
  EXPECT_THROW(Store::findOrInsert(a, typeid(A), fail, destroyRecord), std::bad_alloc);
  EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
}

TEST_F(Records, DestroyersFindTheirVmWithTheOlderRecordsStillThere) {
  static std::size_t older;
  static bool found;
  older = a;
  {
    VmContext vm;
    EnterVm const inside(vm);
    Store::findOrInsert(a, typeid(A), makeRecord, destroyRecord);
    Store::findOrInsert(b, typeid(B), makeRecord, [](void* record) noexcept {
      found = Store::find(older, typeid(A)) != nullptr;
      delete static_cast<int*>(record);
    });
  }
  EXPECT_TRUE(found);
}

TEST_F(Records, DestroyersMayAddAndEraseRecords) {
  static std::size_t added, erased;
  added = Store::getNextID(typeid(A));
  erased = b;
  VmContext vm;
  EnterVm const inside(vm);
  Store::findOrInsert(a, typeid(A), makeRecord, [](void* record) noexcept {
    destroyRecord(record);
    Store::findOrInsert(added, typeid(A), makeRecord, destroyRecord);
    Store::erase(erased, typeid(B));
  });
  Store::findOrInsert(b, typeid(B), makeRecord, destroyRecord);
  Store::erase(a, typeid(A));
  EXPECT_THAT(destroyed, ElementsAre(1, 2));
  EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
  EXPECT_NE(Store::find(added, typeid(A)), nullptr);
}

TEST_F(Records, WithoutAVmThereAreNone) {
  EXPECT_EQ(Store::find(a, typeid(A)), nullptr);
  Store::erase(a, typeid(A));
  EXPECT_EQ(identifierOf([&] { Store::findOrInsert(a, typeid(A), makeRecord, destroyRecord); }),
            "TALVOR:vm:NoVirtualMachine");
}

TEST_F(Records, NumbersAreDistinctAcrossThreads) {
  constexpr int kThreads = 4, kEach = 1000;
  std::vector<std::vector<std::size_t>> numbers(kThreads);
  std::vector<std::thread> threads;
  for (auto& own : numbers) {
    threads.emplace_back([&own] {
      for (int i = 0; i < kEach; ++i) own.push_back(Store::getNextID(typeid(A)));
    });
  }
  for (auto& thread : threads) thread.join();
  std::set<std::size_t> all;
  for (auto const& own : numbers) all.insert(own.begin(), own.end());
  EXPECT_EQ(all.size(), std::size_t{kThreads * kEach});
}

TEST(Vm, EnteringNestsAndLeavesTheOuterVmCurrent) {
  VmContext first, second;
  EXPECT_EQ(VmContext::current(), nullptr);
  {
    EnterVm const one(first);
    {
      EnterVm const two(second);
      EnterVm const again(first);
      EXPECT_EQ(VmContext::current(), &first);
    }
    EXPECT_EQ(VmContext::current(), &first);
  }
  EXPECT_EQ(VmContext::current(), nullptr);
}

TEST(Vm, MovesBetweenThreadsButServesOneAtATime) {
  VmContext vm;
  std::string whileInside, afterwards;
  {
    EnterVm const inside(vm);
    { EnterVm const again(vm); }
    std::thread([&] { whileInside = identifierOf([&] { EnterVm const other(vm); }); }).join();
  }
  std::thread([&] { afterwards = identifierOf([&] { EnterVm const other(vm); }); }).join();
  EXPECT_EQ(whileInside, "TALVOR:vm:InUse");
  EXPECT_EQ(afterwards, "no error");
}

TEST(Dispatcher, FunctionsBelongToTheirVm) {
  VmContext first, second;
  first.functions().add("answer", [](int, txArrayPtr* plhs, int nrhs, txArray const**) {
    plhs[0] = txCreateDouble(40 + nrhs);
  });
  txArrayPtr result;
  txArrayPtr const argument = txCreateDouble(0);
  txArray const* const args[] = {argument.get(), argument.get()};
  {
    EnterVm const inside(first);
    EXPECT_TRUE(Tdispatcher::call("answer", 1, &result, args));
    EXPECT_EQ(result->scalarAsDouble(), 42);
    EXPECT_FALSE(Tdispatcher::call("Answer", 1, &result, args));
  }
  EnterVm const inside(second);
  EXPECT_FALSE(Tdispatcher::call("answer", 1, &result, args));
}

TEST(Dispatcher, ListsAndRemovesNames) {
  Functions functions;
  for (char const* name : {"rand", "abs", "randn"}) functions.add(name, nullptr);
  EXPECT_THAT(functions.names(), ElementsAre("abs", "rand", "randn"));
  EXPECT_TRUE(functions.remove("abs"));
  EXPECT_FALSE(functions.remove("abs"));
  EXPECT_EQ(functions.find("abs"), nullptr);
}

TEST(Dispatcher, SuggestsTheClosestName) {
  std::vector<std::string> const known{"rand", "randi", "randn", "randperm", "RandStream", "abs"};
  for (auto const& [given, closest] :
       {std::pair("randprem", "randperm"), std::pair("Randi", "randi"), std::pair("rnd", "rand"),
        std::pair("randstrem", "RandStream"), std::pair("zeros", ""), std::pair("ab", ""),
        std::pair("", "")})
    EXPECT_EQ(closestName(given, known), closest);
}

}  // namespace
