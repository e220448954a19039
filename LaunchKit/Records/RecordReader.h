#pragma once

#include "LaunchKit/Records/RecordType.h"

#include <string>

namespace quorvel {

/// Reads the JSON form of a record of that type into `record`, which must hold the defaults, using
/// `json` as its working memory. A byte-order mark may lead the text. Unknown keys are ignored
/// whatever they hold, and of a key that appears several times the first counts. Returns every
/// fault that was found, as sentences for the user; an empty text if there are none. With faults,
/// `record` is unspecified.
[[nodiscard]] std::string readRecord(std::string& json, void* record, const RecordType& type);

template<typename Record>
[[nodiscard]] std::string readRecord(std::string& json, Record& record) {
    return readRecord(json, &record, recordType<Record>);
}

} // namespace quorvel
