#pragma once

// Internal: the records of a set themselves, for the engine record, which takes the values of a loaded file
// over instead of copying them.  Users want store/index_data_file.h.

#include "store/index_data_file.h"

namespace tarn {

struct IndexDataAccess {
    static auto& recordsOf(tarnIndexDataFile& file) { return file.records_; }
};

}  // namespace tarn
