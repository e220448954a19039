#pragma once

#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"
#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"

#include <filesystem>
#include <string>

/// The web host's own files in a clone's home: small records.
namespace quorvel {

/// Reads the record at `file` into `record`, which has its default values. Returns why that can't
/// be done; empty if it is done or there is no such file. If not empty, `record` is unspecified.
template<typename Record>
[[nodiscard]] std::string readWebRecord(const std::string& file, Record& record) {
    constexpr std::size_t limit = std::size_t{1} << 20U;
    if (!itemOrLinkExists(file)) {
        return {};
    }
    auto json = isSymbolicLink(file) ? std::nullopt : readFile(file, limit);
    return json ? readRecord(*json, record) : "it can’t be read";
}

/// Writes the record as a whole, mode 0600. Returns false if that fails; the file is unchanged
/// then.
template<typename Record>
[[nodiscard]] bool writeWebRecord(const std::filesystem::path& home, const std::string& file,
                                  const Record& record) {
    const auto json = writeRecord(record);
    return json && replaceFileBelow(home, file, *json);
}

} // namespace quorvel
