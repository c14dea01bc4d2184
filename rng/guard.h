#pragma once

// The guard around plug-in calls of a stream's control operations. Sampling paths carry none.

#include "errors/keys.h"
#include "plugin_rng/interfaces.h"

// Returns operation(). Errors with a key of this library pass unchanged; a PluginRNGError becomes
// "TALVOR:RandStream:PluginError" with its two texts; everything else, host errors included,
// becomes "TALVOR:RandStream:UnexpectedPluginError".
template <class Operation>
decltype(auto) guarded(Operation&& operation) {
  using component_TALVOR::catalog_RandStream::key_PluginError;
  using component_TALVOR::catalog_RandStream::key_UnexpectedPluginError;
  try {
    return operation();
  } catch (foundation::core::except::AnyException const& error) {
    if (dynamic_cast<errors::Key const*>(&error.GetBaseMsgIDObj())) throw;
    errors::raise(key_UnexpectedPluginError());
  } catch (plugin_rng::PluginRNGError const& error) {
    errors::raise(key_PluginError(error.identifier(), error.message()));
  } catch (...) {
    errors::raise(key_UnexpectedPluginError());
  }
}
