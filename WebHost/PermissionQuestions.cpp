#include "WebHost/PermissionQuestions.h"

#include "Base/TerminalText.h"

#include <utility>

namespace quorvel {

PermissionQuestions::PermissionQuestions(PermissionStore& store, Ask ask,
                                         std::function<void()> closed)
    : store_(store),
      ask_(std::move(ask)),
      whenClosed_(std::move(closed)) {}

void PermissionQuestions::decide(const std::string& origin, const std::string& kind,
                                 const std::string& text, std::function<void(bool)> done) {
    const std::string key = origin + " " + kind;
    const auto known = store_.answer(origin, kind);
    if (known || closed_.contains(key)) {
        done(known.value_or(false));
        return;
    }
    const auto [waiting, isFirst] = waiting_.try_emplace(key);
    waiting->second.push_back(std::move(done));
    if (!isFirst) {
        return;
    }
    const bool isAsked =
        ask_({text, "Allow", "Don’t Allow", [this, origin, kind, key](std::optional<bool> answer) {
                  if (answer) {
                      store_.remember(origin, kind, *answer);
                  } else {
                      closed_.insert(key);
                      whenClosed_();
                  }
                  finish(key, answer.value_or(false));
              }});
    if (!isAsked) {
        finish(key, false);
    }
}

void PermissionQuestions::finish(const std::string& key, bool isAllowed) {
    const auto answered = waiting_.extract(key);
    for (const std::function<void(bool)>& done : answered.mapped()) {
        done(isAllowed);
    }
}

std::string otherProgramQuestion(const std::string& host, const std::string& scheme) {
    constexpr std::size_t longestScheme = 30;
    return (host.empty() ? "This page" : withoutUnsafe(host)) + " wants to open a “" +
           withoutUnsafe(scheme, longestScheme) + "” link with another program.";
}

} // namespace quorvel
