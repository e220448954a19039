"""The web site of the tests: site.py PORT_FILE LOG_FILE [TLS_FOLDER]. Logs every request as a line.

With a folder, the site is also on three ports whose certificates are bad, which are made there: the
folder then contains the files "expired", "other" and "self" with their ports, "trusted" with that of
a fourth one for site.localhost, and "authority.cert", which proves that one.

Also answers as a proxy would, for any host. A request with download=N gets a file with N in it, by the
name in line N of the file "names" beside the log; named by the address if N has a sign."""
import base64
import http.server
import os
import ssl
import subprocess
import sys
import threading
import time
import urllib.parse

# A visitor is known by what the browser keeps of the first visit.
HOME = """<title>(3) Inbox</title><h1>Site</h1><script>
const cookie = document.cookie || 'none', kept = localStorage.id || 'none';
localStorage.id = kept === 'none' ? Math.random() : kept;
document.cookie = 'id=' + localStorage.id + ';max-age=9999';
fetch(`/seen?cookie=${cookie}&kept=${kept}&id=${localStorage.id}&webkit=${typeof window.webkit}`);
</script>"""
PAGES = {
    '/': HOME,
    '/badge': """<title>Chat</title><script>
(async () => {
  let refused = '';
  for (const count of [-1, 1e300, 'x'])
    await navigator.setAppBadge(count).catch(error => { refused += error.name + ';'; });
  document.dispatchEvent(new CustomEvent('quorvel-badge', {detail: 1.5}));
  document.dispatchEvent(new CustomEvent('quorvel-badge', {detail: '99'}));
  for (let count = 1001; count <= 2000; ++count) navigator.setAppBadge(count);
  await navigator.setAppBadge(7);
  fetch('/badge-set?refused=' + refused);
})();</script>""",
    '/badge-cleared': "<title>(5) Chat</title><script>navigator.clearAppBadge()</script>",
    '/notice': """<title>Notice</title><script>
for (let count = 0; count < 20; ++count) new Notification('Hello ' + count, {body: '<b>you</b>'});
fetch('/notified?' + Notification.permission);</script>""",
    '/downloads': "<title>Downloads</title><script>location = '/file'</script>",
    '/crash': "<title>Crash</title><script>fetch('/shown')</script>",
    '/link': "<title>Link</title><a href='http://localhost:PORT/elsewhere' "
             "style='position:fixed;inset:0;background:#ccc'>Leave</a>",
    '/popups': """<title>Popups</title><body style='position:fixed;inset:0;background:#ccc'><script>
onmessage = event => fetch('/signed-in?' + event.data);
onclick = () => { let open = 0;
  for (let count = 0; count < 100; ++count) open += window.open('/sign-in?' + count) ? 1 : 0;
  fetch('/opened?' + open); };
</script>""",
    # Its window goes to a page that never comes, and goes on speaking.
    '/opens-slow': """<title>Opens</title><body style='position:fixed;inset:0;background:#ccc'>
<script>onclick = () => { window.open('/slow'); };</script>""",
    '/slow': """<title>Slow</title><script>
location = '/redirect-to-slow';
setTimeout(() => { document.title = 'Still here'; setTimeout(() => alert('I'), 0); }, 1000);
</script>""",
    '/elsewhere': "<title>Elsewhere</title>",
    '/answers-late': "<title>Late</title>",
    # Hangs once it is left for a page elsewhere.
    '/hangs': """<title>Hangs</title><body style='position:fixed;inset:0;background:#ccc'><script>
onclick = () => {
  onclick = null;
  location = 'http://localhost:PORT/answers-late';
  setTimeout(() => {
    const request = new XMLHttpRequest();
    request.open('GET', '/hanging', false);
    request.send();
  }, 500);
};</script>""",
    # Never reacts to anything after a click.
    '/loops': """<title>Loops</title><body style='position:fixed;inset:0;background:#ccc'><script>
onclick = () => {
  const request = new XMLHttpRequest();
  request.open('GET', '/looping', false);
  request.send();
  for (;;) {}
};</script>""",
    '/redirecting': "<title>Redirecting</title><a href='/redirect' "
                    "style='position:fixed;inset:0;background:#ccc'>Sign in</a>",
    '/noopener': """<title>Noopener</title><body style='position:fixed;inset:0;background:#ccc'>
<script>onclick = () => { window.open('/by-itself', '', 'noopener'); };</script>""",
    '/by-itself': "<title>Alone</title><script>navigator.setAppBadge?.(66);"
                  "fetch('/alone?opener=' + window.opener)</script>",
    # Takes longer to ask than the engine waits for it.
    '/draft': """<title>Draft</title><body style='position:fixed;inset:0;background:#ccc'><script>
let count = 0;
onclick = () => fetch('/typed');
onbeforeunload = event => {
  navigator.sendBeacon('/leaving?' + ++count);
  for (const begin = Date.now(); Date.now() < begin + 300;);
  event.preventDefault();
  return 'wait'; };
</script>""",
    '/flashing': """<title>Flashing</title><script>
let count = 0;
const timer = setInterval(() => {
  document.title = ++count % 2 ? '(1) Flashing' : 'Flashing';
  if (count === 200) { clearInterval(timer); document.title = '(1) Done'; }
}, 10);
</script>""",
    '/painted': """<title>Painted</title><body style='margin:0;background:#1e7f3c'>""",
    '/facts': """<title>Facts</title><script>
fetch('/facts-seen?dark=' + matchMedia('(prefers-color-scheme: dark)').matches +
      '&wide=' + (innerWidth > 900) + '&agent=' + navigator.userAgent);</script>""",
    '/menu': "<title>Menu</title><a href='http://localhost:PORT/file' "
             "style='position:fixed;inset:0;background:#ccc'>Link</a>",
    '/strict': "<title>Strict</title><script>fetch('/strict-seen')</script>",
    '/later': "<title>Later</title><script>fetch('/later-seen?' + location.protocol)</script>",
    '/members': "<title>Members</title><script>fetch('/member')</script>",
    '/misspelt': """<title>Misspelt</title><textarea autofocus
style='position:fixed;inset:0;width:100%;height:100%;font:100px serif'>Wrod Wrod Wrod Wrod Wrod Wrod
Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod Wrod</textarea>""",
    # Reads what each kind of storage has of an earlier visit, then leaves its number in all of them.
    '/storage': """<title>Storage</title><script>
onresize = () => fetch('/resized');
const done = request => new Promise(then => { request.onsuccess = () => then(request.result); });
(async () => {
  const open = indexedDB.open('kept', 1);
  open.onupgradeneeded = () => open.result.createObjectStore('ids');
  const database = await done(open), cache = await caches.open('kept');
  const ids = mode => database.transaction('ids', mode).objectStore('ids');
  const workers = await navigator.serviceWorker.getRegistrations();
  const cached = await cache.match('/kept');
  const found = {
    cookie: (document.cookie.match(/long=([0-9]+)/) || [])[1],
    short: (document.cookie.match(/short=([0-9]+)/) || [])[1],
    local: localStorage.id, session: sessionStorage.id,
    database: await done(ids('readonly').get('id')),
    cache: cached && await cached.text(),
    worker: workers.length ? workers[0].active.scriptURL.split('=')[1] : undefined,
    files: navigator.storage && navigator.storage.getDirectory ? 'there' : 'no',
  };
  const id = found.local || String(Date.now()) + Math.floor(Math.random() * 1e6);
  document.cookie = 'long=' + id + ';max-age=9999';
  document.cookie = 'short=' + id;
  localStorage.id = sessionStorage.id = id;
  await done(ids('readwrite').put(id, 'id'));
  await cache.put('/kept', new Response(id));
  await navigator.serviceWorker.register('/worker.js?id=' + id);
  await navigator.serviceWorker.ready;
  const text = Object.entries(found).map(([kind, value]) => kind + '=' + (value || 'none'));
  fetch('/stored?' + text.join('&') + '&id=' + id + '&');
})();</script>""",
    '/worker.js': "oninstall = () => skipWaiting();",
    '/login': """<title>Login</title><body style='position:fixed;inset:0;background:#ccc'><script>
onmessage = event => fetch('/logged-in?' + event.data + '&' + document.cookie);
onclick = () => open('/login-form');</script>""",
    '/login-form': """<title>Form</title><script>document.cookie = 'who=me';
opener.postMessage('done', '*'); close();</script>""",
    # A thousand of each, one kind after the other; each part says when it is over.
    '/flood': """<title>Flood</title><body style='position:fixed;inset:0;background:#ccc'><script>
const many = act => { for (let count = 1; count <= 1000; ++count) act(count); };
onclick = () => {
  onclick = null;
  let open = 0, refused = 0;
  many(count => { open += window.open('/alone?' + count) ? 1 : 0; });
  many(count => { document.title = '(' + count + ') Flood'; });
  many(count => navigator.setAppBadge(count));
  many(() => navigator.geolocation.getCurrentPosition(() => {}, () => {
    if (++refused === 1000) fetch('/all-refused'); }));
  many(count => setTimeout(() => { const link = document.createElement('a');
    link.href = '/named?' + count; link.download = 'named-' + count; link.click(); }, 2 * count));
  fetch('/flooded?' + open);
};</script>""",
    '/dialogs': """<title>Dialogs</title><script>setTimeout(() => {
for (let count = 1; count <= 1000; ++count) alert('Dialog ' + count);
fetch('/dialogs-over'); }, 0)</script>""",
    '/slow-downloads': """<title>Many</title><body><script>
for (let count = 1; count <= 5; ++count) { const frame = document.createElement('iframe');
  frame.src = '/slow-file?' + count; document.body.append(frame); }</script>""",
    # "?FIRST,END,STEP": a key downloads the next five files of those numbers.
    '/names': """<title>Names</title><body style='position:fixed;inset:0;background:#ccc'><script>
let [next, end, step] = location.search.slice(1).split(',').map(Number);
onkeydown = () => {
  for (let count = 0; count < 5 && next < end; ++count, next += step) {
    const frame = document.createElement('iframe');
    frame.src = '/file?download=' + next;
    document.body.append(frame);
  }
};</script>""",
    # What a page of the web must not get.
    '/hostile': """<title>Hostile \u202e\u2066 — Bank</title>
<body style='position:fixed;inset:0;background:#ccc'><script>
const tried = [];
window.note = (name, value) => tried.push(name + '=' + value);
for (const where of ['file:///etc/passwd', 'data:text/html,<title>Data</title>', 'quorvel:x',
                     'webkit://x', 'zoommtg://x', 'smb://x/y', 'view-source:http://127.0.0.1/'])
  try { location.href = where; } catch (error) { note('error', error.name); }
const frame = document.createElement('iframe');
frame.srcdoc = "<script>parent.note('frame', typeof navigator.setAppBadge)</scr" + "ipt>";
document.body.append(frame);
const file = document.createElement('iframe');
file.src = 'file:///etc/passwd';
document.body.append(file);
setTimeout(async () => {
  let read = 'no';
  for (const where of ['file:///etc/passwd', 'webkit:about', 'resource:///org'])
    await fetch(where).then(() => { read = where; }, () => {});
  note('read', read);
  note('webkit', typeof window.webkit);
  try { note('inner', file.contentDocument === null ? 'closed' : file.contentDocument.title); }
  catch (error) { note('inner', 'closed'); }
  fetch('/tried?' + tried.join('&') + '&');
}, 500);
onclick = () => { onclick = null; document.body.requestFullscreen(); };
</script>""",
    '/sign-in': "<title>Sign in</title><script>opener.postMessage('as-me', '*');"
                "fetch('/asked?badge=' + typeof navigator.setAppBadge)</script>",
}
# Answered once there is such a file beside the log.
WAITING = {'/answers-late': 'answer', '/hanging': 'hang-no-more'}
REDIRECTS = {'/redirect': '/elsewhere', '/redirect-to-slow': '/never-answers'}


class Site(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        address = urllib.parse.urlsplit(self.path)
        path = address.path
        if address.query.startswith('download='):
            self.send_named(address.query.partition('=')[2])
            return
        if path in REDIRECTS:
            self.log_message()
            self.send_response_only(302)
            port = self.server.server_port
            self.send_header('Location', f'http://localhost:{port}{REDIRECTS[path]}')
            self.send_header('Content-Length', '0')
            self.end_headers()
            return
        login = base64.b64encode(b'me:secret').decode()
        if path == '/members' and self.headers.get('Authorization') != 'Basic ' + login:
            self.log_message()
            self.send_response_only(401)
            self.send_header('WWW-Authenticate', 'Basic realm="Members. Safe, says your bank"')
            self.send_header('Content-Length', '0')
            self.end_headers()
            return
        if path == '/never-answers':
            self.log_message()
            threading.Event().wait()
        if path in WAITING:
            self.log_message()
            self.wait_for(WAITING[path])
        page = PAGES.get(path, '').replace('PORT', str(self.server.server_port)).encode()
        if path == '/file':
            page = b'downloaded'
        if path == '/slow-file':
            self.send_slowly()
            return
        if path == '/named':
            page = b'named'
        self.send_response(200)
        kinds = {'/file': 'text/plain', '/named': 'text/plain', '/worker.js': 'text/javascript'}
        self.send_header('Content-Type', kinds.get(path, 'text/html;charset=utf-8'))
        if path == '/file':
            self.send_header('Content-Disposition', 'Attachment; filename="../../precious.txt"')
        if path == '/strict':
            self.send_header('Strict-Transport-Security', 'max-age=9999')
        self.send_header('Cache-Control', 'no-store')
        self.send_header('Content-Length', str(len(page)))
        self.end_headers()
        self.wfile.write(page)

    def send_named(self, number):
        self.send_response(200)
        disposition = 'attachment'
        if not number.startswith('-'):
            with open(os.path.join(os.path.dirname(sys.argv[2]), 'names'), encoding='ascii') as names:
                name = names.read().split('\n')[int(number)]
            plain = urllib.parse.unquote(name)
            if plain.isascii() and plain.isprintable():
                quoted = plain.replace('\\', '\\\\').replace('"', '\\"')
                disposition += f'; filename="{quoted}"'
            else:
                disposition += "; filename*=UTF-8''" + name
        self.send_header('Content-Disposition', disposition)
        self.send_header('Content-Length', str(len(number)))
        self.end_headers()
        self.wfile.write(number.encode())

    def send_slowly(self):
        """Sends half of a file, and the rest once there is a file "release" beside the log."""
        self.log_message()
        self.send_response(200)
        self.send_header('Content-Disposition', 'attachment; filename="slow.bin"')
        self.send_header('Content-Length', '200000')
        self.end_headers()
        self.wfile.write(b'x' * 100000)
        self.wfile.flush()
        self.wait_for('release')
        self.wfile.write(b'x' * 100000)

    @staticmethod
    def wait_for(name):
        while not os.path.exists(os.path.join(os.path.dirname(sys.argv[2]), name)):
            time.sleep(0.005)

    do_POST = do_GET

    def log_message(self, *_):
        log.write(self.path + '\n')


CA = """[ca]
default_ca=c
[c]
database=index
new_certs_dir=.
serial=serial
default_md=sha256
policy=p
[p]
commonName=supplied
[req]
distinguished_name=d
[d]
"""


def add_tls(folder):
    """Serves the site with certificates that prove nothing, and with one that does."""
    os.makedirs(folder)

    def write(name, text):
        with open(f'{folder}/{name}', 'w', encoding='utf-8') as made:
            made.write(text)

    def openssl(*arguments):
        subprocess.run(['openssl', *arguments], cwd=folder, check=True, capture_output=True)

    def certify(name, extensions, end, *authority):
        write('index', '')
        write('ext', extensions)
        openssl('req', '-new', '-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:P-256', '-nodes',
                '-keyout', name + '.key', '-subj', '/CN=' + name, '-config', 'ca.cnf',
                '-out', 'request')
        openssl('ca', '-batch', '-notext', '-config', 'ca.cnf', '-extfile', 'ext', '-in', 'request',
                *(authority or ('-selfsign', '-keyfile', name + '.key')),
                '-startdate', '20200101000000Z', '-enddate', end + '0101000000Z',
                '-out', name + '.cert')

    def serve(name):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(f'{folder}/{name}.cert', f'{folder}/{name}.key')
        secured = http.server.ThreadingHTTPServer(('127.0.0.1', 0), Site)
        secured.socket = context.wrap_socket(secured.socket, server_side=True,
                                             do_handshake_on_connect=False)
        threading.Thread(target=secured.serve_forever, daemon=True).start()
        write(name, str(secured.server_port))

    write('ca.cnf', CA)
    write('serial', '01')
    for name, host, end in (('expired', 'IP:127.0.0.1', '2021'), ('self', 'IP:127.0.0.1', '2048'),
                            ('other', 'DNS:other.test', '2048')):
        certify(name, 'subjectAltName=' + host, end)
        serve(name)
    certify('authority', 'basicConstraints=critical,CA:true', '2048')
    certify('trusted', 'subjectAltName=DNS:site.localhost', '2048',
            '-cert', 'authority.cert', '-keyfile', 'authority.key')
    serve('trusted')


log = open(sys.argv[2], 'a', buffering=1, encoding='utf-8')
server = http.server.ThreadingHTTPServer(('127.0.0.1', 0), Site)
if len(sys.argv) > 3:
    add_tls(sys.argv[3])
with open(sys.argv[1] + '.part', 'w', encoding='utf-8') as file:
    file.write(str(server.server_port))
os.rename(sys.argv[1] + '.part', sys.argv[1])
server.serve_forever()
