#pragma once

#include "LaunchKit/Records/RecordType.h"

#include <optional>
#include <string>

namespace quorvel {

/// Returns the JSON form of a record of that type: indented, keys sorted, "/" escaped, absent
/// optional members left out. Returns std::nullopt if a text is not valid UTF-8.
[[nodiscard]] std::optional<std::string> writeRecord(const void* record, const RecordType& type);

/// Writes a record by its own table, as above.
template<typename Record>
[[nodiscard]] std::optional<std::string> writeRecord(const Record& record) {
    return writeRecord(&record, recordType<Record>);
}

} // namespace quorvel
