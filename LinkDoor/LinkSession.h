#pragma once

#include "Platform/processes/Environment.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The session that a clone was started in, as far as the program that opens the clone's links
/// there must know it.
namespace quorvel {

/// In a clone's environment, the clone's home. Other programs may change `HOME`.
inline constexpr const char* cloneHomeVariable = "QUORVEL_CLONE_HOME";

/// How many times one address was handed from clone to clone.
inline constexpr const char* linkHopsVariable = "QUORVEL_LINK_HOPS";

/// The beginning of the names of Quorvel's own variables. None of them leaves a clone.
inline constexpr std::string_view ownVariablePrefix = "QUORVEL_";

/// What a clone's session file contains.
struct LinkSession {
    /// Of every variable that differs in the clone, and of those that no browser can do without,
    /// the session's value; std::nullopt if it is not set in the session.
    std::map<std::string, std::optional<std::string>> variables{};
    /// The program of the clone that opens the links; empty for the default browser.
    std::string opener{};

    bool operator==(const LinkSession&) const = default;

    /// Returns the record for a clone that is started with the environment `clone` in a session
    /// with the environment `session`.
    [[nodiscard]] static LinkSession between(const Environment& session, const Environment& clone);

    /// Returns the session that the text describes; std::nullopt if it is not in that form.
    [[nodiscard]] static std::optional<LinkSession> parse(std::string_view text);

    /// Returns the form that `parse` reads.
    [[nodiscard]] std::string text() const;

    /// Returns the environment of a program outside of the clone, given that of one in it: with the
    /// session's values and without our variables. What only concerns the click that is passed on
    /// (the display, the activation token) is kept.
    [[nodiscard]] Environment outside(const Environment& clone) const;

private:
    [[nodiscard]] bool take(std::string_view record);
};

/// Returns the path of the session file of the clone with this home.
[[nodiscard]] std::string linkSessionFile(const std::string& cloneHome);

/// Reads a clone's session file. Returns std::nullopt if it is missing, malformed, a link, too
/// large, or accessible to other users.
[[nodiscard]] std::optional<LinkSession> readLinkSession(const std::string& cloneHome);

/// Returns the session as it most likely was, for a clone without a session file whose programs
/// have the environment `clone`: the user's own home, the usual session bus, and no variable that
/// leads into `cloneHome`.
[[nodiscard]] LinkSession guessedLinkSession(const std::string& cloneHome,
                                             const Environment& clone);

} // namespace quorvel
