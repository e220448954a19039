#pragma once

/// The interface for notifications, which the engine lacks in windows of other programs. As for
/// badges, a script that the page can't see passes on what the page does.
namespace quorvel {

/// The name of the message handler in `badgeWorld`.
inline constexpr const char* noticeHandler = "notice";

/// The script that adds `Notification` to the page.
extern const char* const noticePageScript;
/// The script for `badgeWorld`, which passes on what the page does, with the "name" of the
/// notification: digits and dots, different in each document and each run of the clone.
extern const char* const noticeListenerScript;
/// The body of a function for `badgeWorld`, with the parameter `answer`, a JSON text for the page.
/// An answer about a notification contains its "name"; only the document that showed it gets it.
extern const char* const noticeAnswerScript;

} // namespace quorvel
