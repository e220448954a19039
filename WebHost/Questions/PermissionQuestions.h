#pragma once

#include "WebHost/Questions/HostQuestion.h"
#include "WebHost/Questions/PermissionStore.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

/// Answers what a page asks for: as the user answered before, or by asking. What is asked for
/// several times is one question, and one that was closed is not asked again until `reset`.
class PermissionQuestions {
public:
    /// Shows the question later or at once. Returns false if it can't, and forgets it.
    using Ask = std::function<bool(HostQuestion)>;

    /// `closed` is called whenever the user closes a question.
    PermissionQuestions(PermissionStore& store, Ask ask, std::function<void()> closed);

    /// Questions that were closed may be asked again.
    void reset() { closed_.clear(); }

    /// Has `done` called with the answer to a question about an origin, now or later.
    void decide(const std::string& origin, const std::string& kind, const std::string& text,
                std::function<void(bool)> done);

    /// Calls `open` if a page at `page` may open that address with another program.
    void decideLink(const std::string& page, const std::string& address,
                    std::function<void()> open);

    [[nodiscard]] const PermissionStore& store() const { return store_; }

private:
    void finish(const std::string& key, bool isAllowed);

    PermissionStore& store_;
    Ask ask_;
    std::function<void()> whenClosed_;
    std::set<std::string> closed_{};
    std::map<std::string, std::vector<std::function<void(bool)>>> waiting_{};
};

/// Returns what this kind allows a page to do, in words that continue "NAME may ".
[[nodiscard]] std::string permissionWords(const std::string& kind);

/// Returns whether a page keeps what it was allowed of this kind until it is loaded again.
[[nodiscard]] bool lastsUntilReload(const std::string& kind);

/// Returns whether the page of that origin still has what was taken back, and has to be loaded
/// again to lose it.
[[nodiscard]] bool isHeldUntilReload(const std::vector<PermissionStore::Answer>& taken,
                                     const std::string& origin);

/// Returns the kind of the permission to open links of that scheme with another program.
[[nodiscard]] std::string linkPermissionKind(const std::string& scheme);

/// Returns the kind of the permission of another site to use its cookies in this one's pages.
[[nodiscard]] std::string dataPermissionKind(const std::string& domain);

/// Returns what the user is asked when a page of that host has a link for another program. Pages
/// choose the scheme.
[[nodiscard]] std::string otherProgramQuestion(const std::string& host, const std::string& scheme);

} // namespace quorvel
