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

/// A record that the user may have changed by hand: one that can't be read is never overwritten,
/// but renamed before a new one is written.
class KeptWebFile {
public:
    KeptWebFile(std::filesystem::path home, std::string path)
        : home_(std::move(home)),
          path_(std::move(path)) {}

    /// Reads the file into `record`, which has its default values, and keeps them if it can't be
    /// read: see `problem`.
    template<typename Record>
    void read(Record& record) {
        problem_ = readWebRecord(path_, record);
        if (!problem_.empty()) {
            record = Record();
        }
    }
    /// Writes the file as a whole, mode 0600. Returns whether that succeeded.
    template<typename Record>
    [[nodiscard]] bool write(const Record& record) {
        if ((!problem_.empty() && !setAside()) || !writeWebRecord(home_, path_, record)) {
            return false;
        }
        problem_.clear();
        return true;
    }
    /// Declares what was read unusable, for this reason.
    void refuse(std::string problem) { problem_ = std::move(problem); }

    /// Returns why the file's contents don't count, as a sentence; empty if they do.
    [[nodiscard]] const std::string& problem() const { return problem_; }
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    /// Renames what can't be read to "NAME.damaged-1". Returns whether nothing is in the way.
    [[nodiscard]] bool setAside() const;

    std::filesystem::path home_;
    std::string path_;
    std::string problem_{};
};

} // namespace quorvel
