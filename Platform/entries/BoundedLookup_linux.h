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

/// Questions to folders that may not answer, such as that of a server that is gone. Several are
/// asked at a time, by other threads, which may still wait for an answer afterwards; what is asked
/// there must not refer to the caller. What gets no answer, or no thread, counts as missing.
namespace quorvel {

using PresenceCheck = std::function<bool(const std::string&)>;

/// Returns those of the files that `isPresent` confirms. Waits for two seconds at most; a folder
/// that doesn't answer delays no other. Files are paths, or names that lie in no folder.
[[nodiscard]] std::set<std::string> presentAmong(const std::set<std::string>& files,
                                                 const PresenceCheck& isPresent);

/// The same for files that are asked about in this order, each list by a thread. Waits until there
/// was no answer for that long: a slow disk is not one that is gone.
[[nodiscard]] std::set<std::string>
presentInLists(std::vector<std::vector<std::string>> lists, const PresenceCheck& isPresent,
               std::chrono::milliseconds patience = std::chrono::seconds(2));

/// Returns what `read` returns for each of the files, without those that it returns std::nullopt
/// for. Lists, threads and patience are those of `presentInLists`.
template<typename Content>
[[nodiscard]] std::map<std::string, Content>
contentsOf(const std::vector<std::vector<std::string>>& lists,
           const std::function<std::optional<Content>(const std::string&)>& read,
           std::chrono::milliseconds patience = std::chrono::seconds(2)) {
    // No thread adds or removes any, and each has its own.
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
