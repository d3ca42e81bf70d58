#pragma once

/// @file
/// `TARN_EXPORT` marks what a shared build of the library offers; everything else is hidden in it.

#include "platform/linkage.h"

#define TARN_EXPORT TARN_LINKAGE
