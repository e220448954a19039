#include "WebHost/Settings/SettingsEditor.h"

#include "Base/TerminalText.h"
#include "WebHost/Questions/PermissionQuestions.h"

#include <array>
#include <utility>

namespace quorvel {
namespace {

std::string unlessKept(bool isKept, const char* what) {
    return isKept ? std::string() : std::string(what) + " can’t be written.";
}

} // namespace

std::string SettingsText::title(const std::string& cloneName) {
    return "Site Settings — " + withoutUnsafe(cloneName);
}

std::string SettingsText::clearsData(const std::string& cloneName) {
    return "Clear all data of “" + withoutUnsafe(cloneName) + "”?";
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the services keep.
std::string SettingsEditor::change(const std::function<void(SiteSettings&)>& edit) {
    SiteSettings next = settings();
    edit(next);
    if (next == settings()) {
        return {};
    }
    std::string problem = services_.settings->change(std::move(next));
    services_.settingsChanged();
    return problem;
}

std::string SettingsEditor::addRule(std::string_view typed, LinkPlace place) {
    const std::string host = ruleHost(typed);
    if (host.empty()) {
        return "A rule for links must name a host such as “example.com”.";
    }
    return change([&](SiteSettings& all) { all.links[host] = rawString(place); });
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the services keep.
std::string SettingsEditor::removePermissions() {
    const auto taken = services_.permissions->list();
    std::string problem = unlessKept(services_.permissions->forgetAll(), "The permissions");
    services_.permissionsTaken(taken);
    return problem;
}

SettingsEditor::Rows SettingsEditor::links(const Removed& removed) {
    Rows rows;
    for (const auto& [host, place] : settings().links) {
        const bool isInside = caseNamed<LinkPlace>(place) == LinkPlace::inside;
        rows.push_back({host + (isInside ? ": in this window" : ": in the browser"),
                        "Remove the rule for " + host, [this, removed, old = host] {
                            removed(change([&](SiteSettings& all) { all.links.erase(old); }));
                        }});
    }
    return rows;
}

SettingsEditor::Rows SettingsEditor::permissions(const Removed& removed) {
    Rows rows;
    for (const PermissionStore::Answer& answer : services_.permissions->list()) {
        const std::string what = withoutUnsafe(answer.origin) +
                                 (answer.isAllowed ? " may " : " may not ") +
                                 permissionWords(answer.kind);
        rows.push_back({what, "Remove: " + what, [this, removed, answer] {
                            const bool isKept =
                                services_.permissions->forget(answer.origin, answer.kind);
                            services_.permissionsTaken({answer});
                            removed(unlessKept(isKept, "The permissions"));
                        }});
    }
    return rows;
}

SettingsEditor::Rows SettingsEditor::certificates(const Removed& removed) {
    constexpr std::size_t shownDigits = 16;
    Rows rows;
    for (const CertificateExceptions::Exception& one : services_.certificates->list()) {
        const std::string host = withoutUnsafe(one.host);
        rows.push_back(
            {host + " (SHA-256 " + one.fingerprint.substr(0, shownDigits) + "…)",
             "Remove the certificate of " + host, [this, removed, old = one.host] {
                 removed(unlessKept(services_.certificates->remove(old), "The certificates"));
             }});
    }
    return rows;
}

std::string SettingsEditor::fileProblem() const {
    const std::array<std::pair<const char*, std::string>, 3> files{{
        {"The settings", services_.settings->problem()},
        {"The permissions", services_.permissions->problem()},
        {"The certificates", services_.certificates->problem()},
    }};
    std::string text;
    for (const auto& [what, problem] : files) {
        if (!problem.empty()) {
            text += std::string(text.empty() ? "" : "\n") + what +
                    " can’t be used, and are kept under another name as soon as you change "
                    "something: " +
                    problem;
        }
    }
    return text;
}

} // namespace quorvel
