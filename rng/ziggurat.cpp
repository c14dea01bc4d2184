// The stream's own ziggurat: Marsaglia and Tsang (2000), 256 layers.

#include "rng/kernels/ziggurat.h"
#include "rng/randstream.h"
#include "rng/rejections.h"
#include "rng/uniforms_ahead.h"
#include "tfl_rng/elementary.h"

namespace {

class ZigguratFill {
 public:
  ZigguratFill(UniformSource source, bool isOwn, double* out, std::size_t n)
      : uniforms_(source, isOwn), run_(out, n) {}

  void operator()() {
    for (;;) {
      if (run_.out == run_.chunkEnd) uniforms_.pass(run_.endChunk());
      if (run_.out == run_.end) break;
      if (surelyRead() > ziggurat::kMostUniformsLeft) {
        uniforms_.lookAhead(ziggurat::kMostUniformsLeft + 1, surelyRead());
        makeMany();
      } else {
        makeOne();
      }
    }
    uniforms_.drawPassed();
  }

 private:
  // Two for each normal to come.
  std::size_t surelyRead() const { return 2 * static_cast<std::size_t>(run_.end - run_.out); }

  // As long as the tail is not reached; then also what it stopped at.
  void makeMany() {
    double const* const before = run_.out;
    const std::size_t read = ziggurat::normals(run_, uniforms_.begin(), uniforms_.unread());
    uniforms_.pass(read);
    rejections_.count(read / 3, run_.out != before);
    if (run_.out != run_.chunkEnd) makeOne();
  }

  void makeOne() {
    run_.planPairs(1);
    uniforms_.need(2, run_.planned, surelyRead());
    const ziggurat::Candidate candidate(uniforms_.begin()[0], uniforms_.begin()[1]);
    if (candidate.isInTail()) {
      run_.planned -= 2;
      uniforms_.pass(2);
      *run_.out++ = tail(candidate.x);
      rejections_.count(0, true);
      return;
    }
    if (!candidate.isInside()) {
      ziggurat::Run ahead = run_;
      ahead.planned -= 2;
      ahead.planThird(ahead.missing());
      uniforms_.need(3, 2 + ahead.planned, surelyRead() + 1);
    }
    double const* const before = run_.out;
    uniforms_.pass(ziggurat::reference::attempt(run_, uniforms_.begin()));
    rejections_.count(1, run_.out != before);
  }

  // A value beyond the tail's start, with the sign of the candidate x.
  double tail(double x) {
    Rejections rejections;
    for (;;) {
      run_.planPairs(1);
      uniforms_.need(2, run_.planned, surelyRead());
      run_.planned -= 2;
      const double a = uniforms_.read();
      const double b = uniforms_.read();
      const double t = ziggurat::kInverseTailStart * tfl_rng::pinnedLog(a);
      const double y = -2 * tfl_rng::pinnedLog(b);
      if (t * t < y) return x < 0 ? t - ziggurat::kTailStart : ziggurat::kTailStart - t;
      rejections.count(1, false);
    }
  }

  UniformsAhead uniforms_;
  ziggurat::Run run_;
  Rejections rejections_;
};

}  // namespace

void randstream::randnZiggurat(double* out, std::size_t n) {
  ZigguratFill(uniforms(), ownView_ != nullptr, out, n)();
}
