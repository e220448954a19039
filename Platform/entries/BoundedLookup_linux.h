#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// Looks into folders that may never answer, such as those of a server that is gone. Several other
/// threads ask, and may still wait for an answer after the call has returned, so the functions that
/// they call must not refer to the caller. What gets no answer, or no thread, counts as missing.
namespace quorvel {

using PresenceCheck = std::function<bool(const std::string&)>;

/// Returns those of the files that `isPresent` confirms. Waits for two seconds at most. Up to 32
/// folders have a thread each; beyond that, some share one, and wait for each other. `files` are
/// paths, or names without a folder.
[[nodiscard]] std::set<std::string> presentAmong(const std::set<std::string>& files,
                                                 const PresenceCheck& isPresent);

/// Does the same for lists of files. One thread asks about the files of each list, in order. Waits
/// until all have answered, or no answer has come for as long as `patience`: a slow disk is not one
/// that is gone.
[[nodiscard]] std::set<std::string>
presentInLists(std::vector<std::vector<std::string>> lists, const PresenceCheck& isPresent,
               std::chrono::milliseconds patience = std::chrono::seconds(2));

/// Returns what `read` returns for each of the files, without those for which it returns
/// std::nullopt. Lists, threads and patience are those of `presentInLists`.
template<typename Content>
[[nodiscard]] std::map<std::string, Content>
readInLists(const std::vector<std::vector<std::string>>& lists,
            const std::function<std::optional<Content>(const std::string&)>& read,
            std::chrono::milliseconds patience = std::chrono::seconds(2)) {
    // No thread adds or removes any, and each writes only those of its own list.
    const auto contents = std::make_shared<std::map<std::string, Content>>();
    for (const auto& list : lists) {
        for (const std::string& file : list) {
            contents->try_emplace(file);
        }
    }
    const auto isRead = [contents, read](const std::string& file) {
        auto content = read(file);
        if (content) {
            contents->at(file) = std::move(*content);
        }
        return content.has_value();
    };
    std::map<std::string, Content> found;
    for (const std::string& file : presentInLists(lists, isRead, patience)) {
        found.emplace(file, std::move(contents->at(file)));
    }
    return found;
}

} // namespace quorvel
