#include "LinkDoor/LinkSession.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "Base/SplitText.h"
#include "Platform/files/PrivateFile.h"
#include "Platform/homes/SessionBusAddress.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

// Every record ends with a NUL byte, the only one that neither a variable nor a path contains.
constexpr std::string_view header = "quorvel link session 1";
constexpr char setMark = '=';
constexpr char unsetMark = '-';
constexpr char openerMark = '@';

// They belong to the click, or to the display that it was made on.
constexpr std::array<std::string_view, 4> keptVariables{"DESKTOP_STARTUP_ID", "DISPLAY",
                                                        "WAYLAND_DISPLAY", "XDG_ACTIVATION_TOKEN"};

// Recorded even if they don't differ: programs in the clone may change them, and a browser can't do
// without the session's.
constexpr std::array<const char*, 3> essentialVariables{sessionBusVariable, "HOME", "PATH"};

bool isKept(std::string_view name) {
    return std::find(keptVariables.begin(), keptVariables.end(), name) != keptVariables.end();
}

bool isOwn(std::string_view name) {
    return name.starts_with(ownVariablePrefix);
}

std::string record(char mark, std::string_view text) {
    return std::string(1, mark).append(text).append(1, '\0');
}

std::optional<std::string> nothingIfEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace

LinkSession LinkSession::between(const Environment& session, const Environment& clone) {
    LinkSession result;
    for (const auto& [name, value] : clone) {
        const auto before = session.find(name);
        if (before == session.end()) {
            result.variables[name] = std::nullopt;
        } else if (before->second != value) {
            result.variables[name] = before->second;
        }
    }
    for (const auto& [name, value] : session) {
        if (!clone.contains(name)) {
            result.variables[name] = value;
        }
    }
    for (const char* name : essentialVariables) {
        const auto value = session.find(name);
        result.variables[name] =
            value == session.end() ? std::nullopt : std::optional(value->second);
    }
    std::erase_if(result.variables, [](const auto& each) { return isOwn(each.first); });
    return result;
}

std::optional<LinkSession> LinkSession::parse(std::string_view text) {
    if (!text.starts_with(header) || !text.substr(header.size()).starts_with('\0') ||
        !text.ends_with('\0')) {
        return std::nullopt;
    }
    LinkSession session;
    for (text.remove_prefix(header.size() + 1); !text.empty();) {
        if (!session.take(takePart(text, '\0'))) {
            return std::nullopt;
        }
    }
    return session;
}

// Returns whether the record is valid.
bool LinkSession::take(std::string_view record) {
    const char mark = record.empty() ? '\0' : record.front();
    const std::string_view rest = record.substr(record.empty() ? 0 : 1);
    const std::size_t equals = rest.find('=');
    const bool isAssignment = equals != std::string_view::npos;
    if (mark == openerMark) {
        opener = rest;
        return true;
    }
    if (mark == unsetMark && !rest.empty() && !isAssignment) {
        variables[std::string(rest)] = std::nullopt;
        return true;
    }
    if (mark == setMark && isAssignment && equals > 0) {
        variables[std::string(rest.substr(0, equals))] = rest.substr(equals + 1);
        return true;
    }
    return false;
}

std::string LinkSession::text() const {
    std::string text = std::string(header).append(1, '\0');
    for (const auto& [name, value] : variables) {
        text += value ? record(setMark, name + "=" + *value) : record(unsetMark, name);
    }
    return opener.empty() ? text : text + record(openerMark, opener);
}

Environment LinkSession::outside(const Environment& clone) const {
    Environment environment = clone;
    for (const auto& [name, value] : variables) {
        if (isKept(name)) {
            continue;
        }
        if (value) {
            environment[name] = *value;
        } else {
            environment.erase(name);
        }
    }
    std::erase_if(environment, [](const auto& each) { return isOwn(each.first); });
    return environment;
}

std::string linkSessionFile(const std::string& cloneHome) {
    return joinAsText(joinAsText(cloneHome, linkFolderName), "session");
}

std::optional<LinkSession> readLinkSession(const std::string& cloneHome) {
    constexpr std::size_t limit = std::size_t{4} << 20U; // more than an environment may have
    const auto text = readPrivateFile(linkSessionFile(cloneHome), limit);
    return text ? LinkSession::parse(*text) : std::nullopt;
}

LinkSession guessedLinkSession(const std::string& cloneHome, const Environment& clone) {
    LinkSession session;
    for (const char* name :
         {"BROWSER", "CFFIXED_USER_HOME", "GSETTINGS_BACKEND", "JAVA_TOOL_OPTIONS", "TMPDIR",
          "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
        session.variables[name] = std::nullopt;
    }
    session.variables["HOME"] = UserPaths::listedHome();
    Environment login = clone;
    login.erase(sessionBusVariable); // the clone's own need not be the session's
    session.variables[sessionBusVariable] = sessionBusAddress(login);
    for (const char* name : {"PATH", "XDG_DATA_DIRS", "XDG_CONFIG_DIRS"}) {
        if (const auto list = clone.find(name); list != clone.end()) {
            session.variables[name] = nothingIfEmpty(withoutFoldersBelow(list->second, cloneHome));
        }
    }
    return session;
}

} // namespace quorvel
