#include "WebHost/Notifications/BadgeScript.h"

#include <cmath>

namespace quorvel {

// Pop-ups get the same scripts, but have no badge: their pages may be anybody's. Not each of them
// has a `window.opener`, so the listener waits until it is told that its window is the clone's own.
// A badge without a number is a flag, for which 1 is shown.
const char* const badgePageScript = R"((() => {
  if (window.opener) return;
  const dispatch = document.dispatchEvent.bind(document), Message = CustomEvent;
  const report = count => { dispatch(new Message('quorvel-badge', {detail: count})); };
  const add = (name, value) => Object.defineProperty(Navigator.prototype, name,
    {value, writable: true, enumerable: true, configurable: true});
  add('setAppBadge', async function setAppBadge(contents) {
    if (contents === undefined) { report(1); return; }
    const count = Math.trunc(Number(contents));
    if (!(count >= 0 && count <= Number.MAX_SAFE_INTEGER))
      throw new TypeError('The count is out of range');
    report(count);
  });
  add('clearAppBadge', async function clearAppBadge() { report(0); });
})();)";

const char* const badgeListenerScript =
    R"(document.addEventListener('quorvel-badge', event => {
  if (typeof event.detail !== 'number') return;
  globalThis.quorvelBadge = event.detail;
  if (globalThis.quorvelIsMain) window.webkit.messageHandlers.badge.postMessage(event.detail);
});)";

const char* const badgeMainScript = R"(globalThis.quorvelIsMain = true;
if (globalThis.quorvelBadge !== undefined)
  window.webkit.messageHandlers.badge.postMessage(globalThis.quorvelBadge);)";

std::optional<std::int64_t> reportedBadge(double message) {
    constexpr double most = 9'007'199'254'740'991.0;
    if (!(message >= 0 && message <= most) || std::trunc(message) != message) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(message);
}

} // namespace quorvel
