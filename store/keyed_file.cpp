// A keyed file with reports.  A load reads into a set of its own, which takes the place of the old one only if
// it is wanted; a save looks for values without a form before anything is written.
// Tests: tests/store/keyed_file_test.cpp.

#include "store/keyed_file.h"

#include <limits>
#include <string>
#include <utility>

#include "store/index_file_reader.h"
#include "store/index_format.h"
#include "store/replaced_file.h"
#include "store/reported_file.h"

namespace tarn {

namespace {

constexpr int deepestVector = 64;

// What keeps a value out of a file.
SaveError formError(const MOLTVARIANT* value, int depth = 1) {
    if (value == nullptr) return SaveError::none;
    if (indexfile::hasNoForm(value->tag)) return SaveError::noForm;
    if (value->tag != tagVector || value->payload.vector == nullptr) return SaveError::none;
    if (depth > deepestVector) return SaveError::tooDeep;
    for (MOLTVARIANT** element = value->payload.vector; *element != nullptr; ++element) {
        const SaveError error = formError(*element, depth + 1);
        if (error != SaveError::none) return error;
    }
    return SaveError::none;
}

}  // namespace

LoadReport KeyedFile::load(std::string_view fileName, OnDamage onDamage, const ProgressFunction& progress) {
    LoadReport report;
    tarnIndexDataFile loaded;
    const ReportedFile file = readReported(fileName, 0, longestUnsigned, progress, report);
    if (file.data != nullptr) {
        IndexFileReader reader({reinterpret_cast<const unsigned char*>(file.data.get()), file.size}, report);
        loaded.readRecords(reader);
        reader.finish();
    }
    if (!report && onDamage == OnDamage::restore) return report;
    std::swap(file_.records_, loaded.records_);
    std::swap(file_.header_, loaded.header_);
    file_.lastFound_ = 0;
    return report;
}

SaveReport KeyedFile::save(std::string_view fileName, Durability durability) const {
    SaveReport report;
    if (fileName.empty() || fileName.find('\0') != std::string_view::npos) {
        report.error = SaveError::badName;
        return report;
    }
    for (const auto& record : file_.records_) {
        for (std::size_t i = 0; i < record.values.size(); ++i) {
            report.error = formError(record.values[i]);
            if (report) continue;
            report.id = record.index.id;
            report.row = static_cast<std::int32_t>(i);
            return report;
        }
    }
    ReplacedFile replaced{std::string(fileName)};
    report = file_.writeRecords(replaced.temporary().c_str(), durability == Durability::durable);
    if (!report) return report;
    report.system = replaced.replace(durability);
    if (report.system != ERROR_SUCCESS) report.error = SaveError::cantReplace;
    return report;
}

bool KeyedFile::contains(RecordKey key) const {
    return file_.checkIndexRecord(key.id, key.type) != 0;
}

std::int32_t KeyedFile::size(RecordKey key) const {
    const auto* const record = file_.findRecord(key.id, key.type);
    return record == nullptr ? 0 : static_cast<std::int32_t>(record->values.size());
}

ValueView KeyedFile::at(RecordKey key, std::int32_t repeat) const {
    const auto* const record = file_.findRecord(key.id, key.type);
    if (record == nullptr || repeat < 0 || std::cmp_greater_equal(repeat, record->values.size())) return {};
    return ValueView(record->values[static_cast<std::size_t>(repeat)]);
}

void KeyedFile::set(RecordKey key, std::int32_t repeat, const Value& value) {
    if (repeat < 0 || repeat == std::numeric_limits<std::int32_t>::max()) return;
    file_.addIndexRecord(key.id, key.type, repeat + 1);
    file_.updateIndexRecord(key.id, key.type, repeat + 1);
    file_.addDataRecord(key.id, key.type, repeat, value.raw());
}

}  // namespace tarn
