#pragma once

// All of the C++ interface.

#include <tvmathrng/cxx20.h>

#include <tvmathrng/bits.h>
#include <tvmathrng/error.h>
#include <tvmathrng/family.h>
#include <tvmathrng/stream.h>
#include <tvmathrng/values.h>
#include <tvmathrng/version.h>
