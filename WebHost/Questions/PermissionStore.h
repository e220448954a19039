#pragma once

#include "WebHost/Storage/WebRecords.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// What the user answered when the pages of a web clone asked for something, by origin
/// ("https://example.com") and kind ("notifications"). Kept in a file below the clone's home.
class PermissionStore {
public:
    struct Answer {
        std::string origin{};
        std::string kind{};
        bool isAllowed = false;

        bool operator==(const Answer&) const = default;
    };

    /// Reads the file `path` below `home`. A missing file has no answers, and neither has one that
    /// can't be read: see `problem`. That one is renamed when there is an answer to keep.
    PermissionStore(std::filesystem::path home, std::string path);

    /// Returns why the file could not be read, as a sentence; empty if it could.
    [[nodiscard]] const std::string& problem() const { return file_.problem(); }

    /// Returns the answer; std::nullopt if the user has not been asked.
    [[nodiscard]] std::optional<bool> answer(const std::string& origin,
                                             const std::string& kind) const;

    /// Keeps an answer. Returns false if the file can't be written; the answer then holds for this
    /// process only.
    bool remember(const std::string& origin, const std::string& kind, bool isAllowed);

    /// Takes an answer back, so that the user is asked again. Returns false as above.
    bool forget(const std::string& origin, const std::string& kind);
    /// Takes all answers back. Returns false as above.
    bool forgetAll();

    /// Returns all answers, sorted by origin and kind.
    [[nodiscard]] std::vector<Answer> list() const;

private:
    [[nodiscard]] bool save();

    KeptWebFile file_;
    std::map<std::string, std::string> answers_{}; ///< "ORIGIN KIND": "allow" or "deny"
};

} // namespace quorvel
