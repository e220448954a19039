#pragma once

/// The interface for notifications, which the engine lacks in windows of other programs. As for
/// badges, a script that the page can't see passes on what the page does.
namespace quorvel {

/// The name of the message handler in `badgeWorld`.
inline constexpr const char* noticeHandler = "notice";

/// The script that adds `Notification` to the page.
extern const char* const noticePageScript;
/// The script for `badgeWorld`, which passes on what the page does, with the "name" of the
/// notification: digits and dots, as no other document or run of the clone has it.
extern const char* const noticeListenerScript;
/// The body of a function for `badgeWorld`, with the parameter `answer`, a JSON text for the page.
/// What is about a notification has its "name"; documents that it is not of don't get it.
extern const char* const noticeAnswerScript;

} // namespace quorvel
