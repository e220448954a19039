#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What the title bars of web clones show.
namespace quorvel {

/// Returns a page's title as it may be shown: without unsafe characters and at most 120 characters
/// long.
[[nodiscard]] std::string pageTitle(std::string_view raw);

/// Returns the window's title, "(7) Inbox — NAME": the page's title, isolated so that its direction
/// can't change what follows, then always the clone's name. The badge comes first, unless the
/// page's title itself begins with it.
[[nodiscard]] std::string windowTitle(std::string_view rawTitle, std::string_view cloneName,
                                      const std::optional<std::string>& badge);

/// Returns the title of a pop-up window, which always begins with the page's host.
[[nodiscard]] std::string popupTitle(std::string_view address, std::string_view rawTitle,
                                     std::string_view cloneName);

/// Returns what a header says about where the page is from: its host, and why that is not certain.
/// `isExcepted` says that an invalid certificate of the host was accepted.
[[nodiscard]] std::string shownHost(std::string_view address, bool isExcepted);

} // namespace quorvel
