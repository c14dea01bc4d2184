#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "report/chances.h"
#include "report/report.h"

namespace report {

std::vector<Result> measureAll(Subject const& subject, Progress const& progress) {
  auto const table = plots();
  std::vector<Result> results;
  for (Plot const& plot : table) results.push_back({&plot, {}});
  std::mutex telling;
  std::size_t done = 0;
  std::exception_ptr failure;
  auto const measure = [&](Result& result) {
    result.finding = result.plot->measure(subject);
    std::lock_guard const lock(telling);
    ++done;
    if (progress) {
      progress(static_cast<double>(done) / static_cast<double>(table.size()), result.plot->title);
    }
  };
  std::atomic<std::size_t> next = 0;
  auto const work = [&] {
    for (std::size_t i = next++; i < results.size(); i = next++) {
      if (results[i].plot->alone) continue;
      try {
        measure(results[i]);
      } catch (...) {
        std::lock_guard const lock(telling);
        failure = std::current_exception();
        return;
      }
    }
  };
  {
#ifndef TV_SERIAL
    std::vector<std::jthread> workers;
    try {
      for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i) workers.emplace_back(work);
    } catch (std::system_error const&) {
      // Fewer threads do the same work.
    }
#endif
    work();
  }
  if (failure) std::rethrow_exception(failure);
  for (Result& result : results) {
    if (result.plot->alone) measure(result);
  }
  return results;
}

std::size_t Judgement::redCount() const {
  return static_cast<std::size_t>(std::count(red.begin(), red.end(), true));
}

Judgement judge(std::vector<Result> const& results) {
  std::vector<double> p;
  for (Result const& result : results) {
    for (Test const& test : result.finding.tests) p.push_back(test.p);
  }
  std::vector<double> const adjusted = holm(p);
  Judgement out;
  out.tests = p.size();
  out.level = kFamilyError / static_cast<double>(std::max<std::size_t>(p.size(), 1));
  std::size_t at = 0;
  for (Result const& result : results) {
    bool red = !result.finding.holds;
    double smallest = std::nan("");
    for (std::size_t i = 0; i < result.finding.tests.size(); ++i, ++at) {
      red = red || adjusted[at] < kFamilyError;
      smallest = std::fmin(smallest, p[at]);
    }
    out.red.push_back(red);
    out.smallest.push_back(smallest);
  }
  return out;
}

}  // namespace report
