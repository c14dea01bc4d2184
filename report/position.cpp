#include "report/position.h"

#include <algorithm>
#include <vector>

#include "report/subject.h"

namespace report {

namespace {

constexpr std::size_t kProbe = 4;  // outputs that are compared before the whole state is
constexpr std::size_t kBlock = 1000;

std::vector<unsigned char> stateOf(randstream const& stream) {
  std::vector<unsigned char> state(stream.getStateBufLen());
  stream.getStateBuf(state.data(), state.size());
  return state;
}

// Puts a stream's state and precision back.
class Restore {
 public:
  explicit Restore(randstream& stream)
      : stream_(stream), state_(stateOf(stream)), fullPrecision_(stream.fullPrecision()) {}
  ~Restore() {
    choosePrecision(stream_, fullPrecision_);
    stream_.setStateBuf(state_.data(), state_.size());
  }
  Restore(Restore const&) = delete;
  Restore& operator=(Restore const&) = delete;

  std::vector<unsigned char> const& state() const { return state_; }

 private:
  randstream& stream_;
  std::vector<unsigned char> state_;
  bool fullPrecision_;
};

// Outputs of reduced precision that a draw of full precision takes.
std::uint64_t outputsPerDraw(randstream& start) {
  Restore const restore(start);
  double values[2];
  choosePrecision(start, true);
  start.randuFcn(values, 1);
  auto const after = stateOf(start);
  choosePrecision(start, false);
  start.setStateBuf(restore.state().data(), restore.state().size());
  start.randuFcn(values, 1);
  return stateOf(start) == after ? 1 : 2;
}

}  // namespace

std::optional<Position> positionBehind(randstream& stream, std::shared_ptr<randstream> const& start,
                                       std::uint64_t limit) {
  Restore const restore(stream);
  start->setAntithetic(stream.antithetic());
  std::uint64_t const each = outputsPerDraw(*start);
  double probe[kProbe];
  choosePrecision(stream, false);
  stream.randuFcn(probe, kProbe);
  choosePrecision(*start, false);
  std::vector<double> window;
  std::vector<unsigned char> before;
  std::uint64_t at = 0;  // of the window's begin, in outputs
  while (at <= limit * each) {
    before = stateOf(*start);
    window.resize(kBlock + kProbe);
    start->randuFcn(window.data(), window.size());
    auto found = std::search(window.begin(), window.end(), probe, probe + kProbe);
    while (found != window.end()) {
      auto const offset = static_cast<std::uint64_t>(found - window.begin());
      start->setStateBuf(before.data(), before.size());
      double skipped = 0;
      for (std::uint64_t i = 0; i < offset; ++i) start->randuFcn(&skipped, 1);
      if (stateOf(*start) == restore.state()) {
        return Position{(at + offset) / each, (at + offset) % each != 0};
      }
      found = std::search(found + 1, window.end(), probe, probe + kProbe);
    }
    start->setStateBuf(before.data(), before.size());
    start->randuFcn(window.data(), kBlock);
    at += kBlock;
  }
  return std::nullopt;
}

}  // namespace report
