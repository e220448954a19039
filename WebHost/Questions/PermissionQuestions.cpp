#include "WebHost/Questions/PermissionQuestions.h"

#include "Base/TerminalText.h"
#include "WebHost/Links/WebAddress.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quorvel {
namespace {

constexpr std::string_view linkKind = "open-";
constexpr std::string_view dataKind = "data-of-";

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> words{{
    {"camera", "use the camera"},
    {"camera+microphone", "use the camera and the microphone"},
    {"clipboard", "read the clipboard"},
    {"location", "know where you are"},
    {"microphone", "use the microphone"},
    {"notifications", "show notifications"},
    {"pointer-lock", "hide and hold the pointer"},
    {"protected-media", "play protected media"},
    {"screen", "record the screen"},
}};

} // namespace

std::string permissionWords(const std::string& kind) {
    const auto* const found = std::find_if(words.begin(), words.end(),
                                           [&](const auto& one) { return one.first == kind; });
    if (found != words.end()) {
        return std::string(found->second);
    }
    if (kind.starts_with(linkKind)) {
        return "open “" + withoutUnsafe(kind.substr(linkKind.size())) +
               "” links with another program";
    }
    if (kind.starts_with(dataKind)) {
        return "let " + withoutUnsafe(kind.substr(dataKind.size())) + " use its cookies here";
    }
    return withoutUnsafe(kind);
}

bool lastsUntilReload(const std::string& kind) {
    constexpr std::array<std::string_view, 5> kinds{"camera", "camera+microphone", "location",
                                                    "microphone", "screen"};
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

bool isHeldUntilReload(const std::vector<PermissionStore::Answer>& taken,
                       const std::string& origin) {
    return std::any_of(taken.begin(), taken.end(), [&](const PermissionStore::Answer& answer) {
        return answer.isAllowed && answer.origin == origin && lastsUntilReload(answer.kind);
    });
}

std::string linkPermissionKind(const std::string& scheme) {
    return std::string(linkKind) + scheme;
}

std::string dataPermissionKind(const std::string& domain) {
    return std::string(dataKind) + domain;
}

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

void PermissionQuestions::decideLink(const std::string& page, const std::string& address,
                                     std::function<void()> open) {
    const std::string scheme = schemeOf(address);
    const std::string origin = originOf(page);
    decide(origin.empty() ? "other" : origin, linkPermissionKind(scheme),
           otherProgramQuestion(hostOf(page), scheme), [open = std::move(open)](bool isAllowed) {
               if (isAllowed) {
                   open();
               }
           });
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
