// An estimate on any number of MPI ranks with the same result, and two ways to lose it.
//
//   mpirun -n 3 build/examples/mpi_estimate
//
// A work item throws points at the unit square, counts those inside the quarter circle and adds up
// the heights of the circle's arc above their first coordinates: two estimates of pi, one from
// whole numbers and one from rounded sums. What a rank does with the items is the same in all ways;
// they differ in where an item's numbers come from and in who adds up.

#include <mpi.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <vector>

#include <tvmathrng/random.h>

namespace {

using namespace tvmathrng;

constexpr int kItems = 1001;  // divides by neither 2, 3 nor 5
constexpr std::size_t kPoints = 1000;
constexpr Seed kSeed{42};

struct Result {
  std::uint64_t inside = 0;
  double heights = 0;
};

Result work(Stream& stream) {
  std::array<double, 2 * kPoints> u;
  stream.uniform(u);
  Result result;
  for (std::size_t i = 0; i < u.size(); i += 2) {
    double const height = std::sqrt(1 - u[i] * u[i]);
    result.inside += u[i + 1] < height;
    result.heights += height;
  }
  return result;
}

struct Ranks {
  int rank;
  int size;
};

// The items of this rank: every size-th.
template <class DrawItem>
std::vector<Result> itemsOf(Ranks ranks, DrawItem const& drawItem) {
  std::vector<Result> results;
  for (int item = ranks.rank; item < kItems; item += ranks.size) results.push_back(drawItem(item));
  return results;
}

std::uint64_t insideOf(std::vector<Result> const& results) {
  return std::accumulate(results.begin(), results.end(), std::uint64_t{0},
                         [](std::uint64_t sum, Result const& item) { return sum + item.inside; });
}
double heightsOf(std::vector<Result> const& results) {
  return std::accumulate(results.begin(), results.end(), 0.0,
                         [](double sum, Result const& item) { return sum + item.heights; });
}

// Whole numbers add up to the same in every order: MPI_SUM will do.
std::uint64_t totalInside(std::vector<Result> const& mine) {
  std::uint64_t const part = insideOf(mine);
  std::uint64_t total = 0;
  MPI_Reduce(&part, &total, 1, MPI_UINT64_T, MPI_SUM, 0, MPI_COMM_WORLD);
  return total;
}

// Rounded sums depend on their order, and so on the number of ranks.
double heightsByMpiSum(std::vector<Result> const& mine) {
  double const part = heightsOf(mine);
  double total = 0;
  MPI_Reduce(&part, &total, 1, MPI_DOUBLE, MPI_SUM, 0, MPI_COMM_WORLD);
  return total;
}

// The same sum in the order of the items: rank 0 gathers every item's part, puts it in its place
// and adds them up.
double heightsInOrder(Ranks ranks, std::vector<Result> const& mine) {
  std::vector<double> parts(mine.size());
  std::transform(mine.begin(), mine.end(), parts.begin(),
                 [](Result const& item) { return item.heights; });
  std::vector<int> counts(ranks.size);
  std::vector<int> starts(ranks.size);
  for (int rank = 0, start = 0; rank < ranks.size; start += counts[rank++]) {
    counts[rank] = (kItems - rank + ranks.size - 1) / ranks.size;
    starts[rank] = start;
  }
  std::vector<double> gathered(kItems);
  MPI_Gatherv(parts.data(), static_cast<int>(parts.size()), MPI_DOUBLE, gathered.data(),
              counts.data(), starts.data(), MPI_DOUBLE, 0, MPI_COMM_WORLD);
  double total = 0;
  for (int item = 0; item < kItems; ++item)
    total += gathered[starts[item % ranks.size] + item / ranks.size];
  return total;
}

void report(Ranks ranks, char const* way, std::vector<Result> const& mine) {
  std::uint64_t const inside = totalInside(mine);
  double const inOrder = heightsInOrder(ranks, mine);
  double const byMpiSum = heightsByMpiSum(mine);
  if (ranks.rank != 0) return;
  constexpr double kScale = 4.0 / (static_cast<double>(kPoints) * kItems);
  std::printf("%s\n", way);
  std::printf("  inside            %llu\n", static_cast<unsigned long long>(inside));
  std::printf("  heights in order  %.17g\n", inOrder * kScale);
  std::printf("  heights MPI_SUM   %.17g\n", byMpiSum * kScale);
}

}  // namespace

int main(int argc, char** argv) {
  MPI_Init(&argc, &argv);
  Ranks ranks;
  MPI_Comm_rank(MPI_COMM_WORLD, &ranks.rank);
  MPI_Comm_size(MPI_COMM_WORLD, &ranks.size);

  // Item k draws from substream k: nobody needs to know who does what.
  Stream const stream("philox4x32_10", kSeed);
  report(ranks, "a substream for each item", itemsOf(ranks, [&](int item) {
           Stream own = stream.at_substream(Substream{static_cast<std::uint64_t>(item)});
           return work(own);
         }));

  // Item k draws from its block of one long stream: the numbers of a program without MPI.
  report(ranks, "a block of one stream for each item", itemsOf(ranks, [&](int item) {
           Stream own = stream.at_substream(Substream{0});
           own.advance(2 * kPoints * static_cast<std::uint64_t>(item));
           return work(own);
         }));

  // The tempting way: streams that are independent, but belong to the ranks. With another number of
  // ranks every item has other numbers.
  Stream ofRank("philox4x32_10", kSeed, StreamIndex{static_cast<std::uint64_t>(ranks.rank)},
                StreamCount{static_cast<std::uint64_t>(ranks.size)});
  report(ranks, "a stream for each rank", itemsOf(ranks, [&](int) { return work(ofRank); }));

  MPI_Finalize();
  return 0;
}
