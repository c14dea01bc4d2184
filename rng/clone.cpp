// Copies of a stream, and the way back to one.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <utility>

#include "plugin_rng/own_plugin.h"
#include "rng/in_use.h"
#include "rng/mr_functions.h"
#include "rng/stream_factory.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"

namespace {

// A stream of the same constants and settings, at its start.
std::unique_ptr<randstream> sibling(randstream const& original) {
  std::unique_ptr<randstream> made(mrCreateRNGStream(original.generatorType(),
                                                     original.numStreams(), original.streamIndex(),
                                                     original.seed(), nullptr, 0));
  made->setAntithetic(original.antithetic());
  made->setFullPrecision(original.fullPrecision());
  made->setRandnAlg(original.getRandnAlg());
  return made;
}

}  // namespace

std::unique_ptr<randstream> remade(randstream const& original, std::uint64_t substream) {
  std::unique_ptr<randstream> copy = sibling(original);
  if (substream != 0) copy->setSubstream(substream);
  // One word a byte: room to spare, aligned for every state, and a length that no array can have
  // is refused by the allocation itself.
  std::uint64_t const length = original.getStateBufLen();
  auto const state =
      std::make_unique_for_overwrite<std::uint64_t[]>(static_cast<std::size_t>(length));
  original.getStateBuf(state.get(), length);
  copy->setStateBuf(state.get(), length);
  return copy;
}

std::unique_ptr<randstream> randstream::clone() const {
  const InUse inUse(*this);
  if (!ownView_) {
    auto copy = remade(*this, getSubstream());
    copy->pendingNormalValid_ = pendingNormalValid_;
    copy->pendingNormal_ = pendingNormal_;
    copy->counts_ = counts_;
    return copy;
  }
  plugin_rng::IOwnPluginRNG::Views const views = ownView_->clone();
  PluginOwner plugin(views.plugin);
  std::unique_ptr<randstream> copy(new randstream(*this));
  copy->plugin_ = plugin.release();
  copy->normalView_ = views.normals;
  copy->substreamView_ = copy->jumpView_ = views.substreams;
  copy->ownView_ = views.own;
  return copy;
}

std::unique_ptr<randstream> randstream::atSubstream(std::uint64_t k) const {
  std::unique_ptr<randstream> item = sibling(*this);
  item->setSubstream(k);
  return item;
}

void randstream::takeOver(std::unique_ptr<randstream> other) noexcept {
  const InUse inUse(*this);
  std::ranges::copy(generatorType_, other->generatorType_);
  other->counts_ = counts_;
  plugin_rng::IPluginRNG* const own = plugin_;
  *this = *other;
  other->plugin_ = own;  // ends with it
  ++counts_.moves;
}

void randstream::WholeDraw::begin(randstream& stream) {
  if (!stream.ownView_) return;
  stream_ = &stream;
  exceptionsOutside_ = std::uncaught_exceptions();
  before_ = stream.clone();
}

void randstream::WholeDraw::end() noexcept {
  if (plugin_rng::isInterrupted() && std::uncaught_exceptions() > exceptionsOutside_)
    stream_->rewind(std::move(before_));
}

void randstream::rewind(std::unique_ptr<randstream> earlier) noexcept {
  DrawCounts const then = earlier->counts_;
  drawsInThread -= counts_.drawn() - then.drawn();
  takeOver(std::move(earlier));
  counts_ = then;
}
