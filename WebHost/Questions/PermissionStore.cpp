#include "WebHost/Questions/PermissionStore.h"

#include <utility>

namespace quorvel {
namespace {

struct Answers {
    std::map<std::string, std::string> permissions{};
};

constexpr std::string_view allowed = "allow";
constexpr std::string_view denied = "deny";

// No origin contains a blank.
std::string keyOf(const std::string& origin, const std::string& kind) {
    return origin + " " + kind;
}

} // namespace

template<>
struct RecordTable<Answers> {
    static constexpr std::string_view name = "list of permissions";
    static constexpr auto fields =
        sortedByKey(std::array{Row<Answers>::of<&Answers::permissions>("permissions")});
};

PermissionStore::PermissionStore(std::filesystem::path home, std::string path)
    : file_(std::move(home), std::move(path)) {
    Answers kept;
    file_.read(kept);
    answers_ = std::move(kept.permissions);
    std::erase_if(answers_, [](const auto& one) {
        return (one.second != allowed && one.second != denied) ||
               one.first.find(' ') == std::string::npos;
    });
}

std::optional<bool> PermissionStore::answer(const std::string& origin,
                                            const std::string& kind) const {
    const auto found = answers_.find(keyOf(origin, kind));
    return found == answers_.end() ? std::nullopt : std::optional(found->second == allowed);
}

bool PermissionStore::remember(const std::string& origin, const std::string& kind, bool isAllowed) {
    answers_[keyOf(origin, kind)] = isAllowed ? allowed : denied;
    return save();
}

bool PermissionStore::forget(const std::string& origin, const std::string& kind) {
    answers_.erase(keyOf(origin, kind));
    return save();
}

bool PermissionStore::forgetAll() {
    answers_.clear();
    return save();
}

std::vector<PermissionStore::Answer> PermissionStore::list() const {
    std::vector<Answer> all;
    for (const auto& [key, value] : answers_) {
        const std::size_t blank = key.find(' ');
        all.push_back({key.substr(0, blank), key.substr(blank + 1), value == allowed});
    }
    return all;
}

bool PermissionStore::save() {
    return file_.write(Answers{answers_});
}

} // namespace quorvel
