#pragma once

// The core generator library as this library calls it: the bases that generators share and the
// functions with pinned results. Each plug-in includes its own core.

#include "tfl_rng/convert.h"
#include "tfl_rng/core_rng.h"
#include "tfl_rng/elementary.h"
#include "tfl_rng/normal_quantile.h"
#include "tfl_rng/to_double.h"
