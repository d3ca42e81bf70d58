#pragma once

// TARN_EXPORT marks what a shared build of the library offers; everything else stays hidden in it.

#include "platform/linkage.h"

#define TARN_EXPORT TARN_LINKAGE
