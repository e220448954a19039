#include "WebHost/Notifications/NoticeScript_macos.h"

namespace quorvel {

// Events that a page makes up deceive only the page itself: the host keeps its own answers.
const char* const noticePageScript = R"((() => {
  if (window.Notification || window.opener || !window.isSecureContext) return;
  const Message = CustomEvent, {parse, stringify} = JSON;
  const dispatch = document.dispatchEvent.bind(document);
  let permission = 'default', last = 0, asked = [];
  const shown = new Map();
  const send = what =>
    dispatch(new Message('quorvel-notice', {detail: stringify(what)}));
  document.addEventListener('quorvel-notice-answer', event => {
    const answer = parse(event.detail);
    if (answer.permission) {
      permission = answer.permission;
      for (const done of asked.splice(0)) done(permission);
    }
    const notice = shown.get(answer.id);
    if (!notice) return;
    if (answer.event === 'close' || answer.event === 'error') shown.delete(answer.id);
    notice.dispatchEvent(new Event(answer.event));
  });
  class Notification extends EventTarget {
    #id; #title; #options; #handlers = {};
    constructor(title, options = {}) {
      super();
      this.#id = ++last;
      this.#title = String(title);
      this.#options = {...options};
      shown.set(this.#id, this);
      send({kind: 'show', id: this.#id, title: this.#title,
            body: String(options.body ?? ''), tag: String(options.tag ?? '')});
    }
    static get permission() { return permission; }
    static get maxActions() { return 0; }
    static requestPermission(callback) {
      const answer = permission !== 'default' ? Promise.resolve(permission)
        : new Promise(done => { asked.push(done); send({kind: 'ask'}); });
      return answer.then(value => {
        if (typeof callback === 'function') callback(value);
        return value;
      });
    }
    get title() { return this.#title; }
    get body() { return String(this.#options.body ?? ''); }
    get tag() { return String(this.#options.tag ?? ''); }
    get icon() { return String(this.#options.icon ?? ''); }
    get data() { return this.#options.data ?? null; }
    close() {
      if (shown.delete(this.#id)) {
        send({kind: 'close', id: this.#id});
        this.dispatchEvent(new Event('close'));
      }
    }
    static {
      for (const name of ['click', 'close', 'error', 'show'])
        Object.defineProperty(Notification.prototype, 'on' + name, {
          configurable: true, enumerable: true,
          get() { return this.#handlers[name] ?? null; },
          set(handler) {
            this.removeEventListener(name, this.#handlers[name]);
            this.#handlers[name] = typeof handler === 'function' ? handler : null;
            if (this.#handlers[name]) this.addEventListener(name, handler);
          }});
    }
  }
  Object.defineProperty(window, 'Notification',
    {value: Notification, writable: true, configurable: true});
  send({kind: 'state'});
})();)";

// Each document counts its notifications from 1, so that the system knows them by a name that
// begins with the document's own. Pages can't see it, and can't use another document's.
const char* const noticeListenerScript = R"((() => {
  const own = [...crypto.getRandomValues(new Uint32Array(3))].join('.');
  globalThis.quorvelNoticeDocument = own;
  document.addEventListener('quorvel-notice', event => {
    if (typeof event.detail !== 'string' || event.detail.length > 10000) return;
    const notice = {...JSON.parse(event.detail)};
    notice.name = own + '.' + (Math.trunc(notice.id) || 0);
    window.webkit.messageHandlers.notice.postMessage(notice);
  });
})();)";

const char* const noticeAnswerScript = R"(const {name, ...told} = JSON.parse(answer);
if (name) {
  const end = name.lastIndexOf('.');
  if (name.slice(0, end) !== globalThis.quorvelNoticeDocument) return;
  told.id = Number(name.slice(end + 1));
}
document.dispatchEvent(
  new CustomEvent('quorvel-notice-answer', {detail: JSON.stringify(told)}));)";

} // namespace quorvel
