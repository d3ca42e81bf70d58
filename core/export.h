#pragma once

/// @file
/// `TARN_EXPORT` marks what a shared build of the library offers; everything else is hidden in it.
/// `TARN_HIDDEN` marks the members of an offered class that only the library itself calls.

#include "platform/linkage.h"

#define TARN_EXPORT TARN_LINKAGE
#define TARN_HIDDEN TARN_NO_LINKAGE
