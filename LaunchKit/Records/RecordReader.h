#pragma once

#include "LaunchKit/Records/RecordType.h"

#include <string>

namespace quorvel {

/// Reads the JSON form of a record of that type into `record`, which must have its default values,
/// using `json` as working memory. The text may begin with a byte-order mark. Unknown keys are
/// ignored, with any values, and the first of duplicate keys counts. Returns every fault
/// found, as sentences for the user; an empty text if there are none. If there are faults, `record`
/// is unspecified.
[[nodiscard]] std::string readRecord(std::string& json, void* record, const RecordType& type);

/// Reads a record by its own table, as above.
template<typename Record>
[[nodiscard]] std::string readRecord(std::string& json, Record& record) {
    return readRecord(json, &record, recordType<Record>);
}

} // namespace quorvel
