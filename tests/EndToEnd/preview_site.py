"""Sites that are asked for their icon and title: preview_site.py PORT_FILE LOG_FILE."""
import http.server
import os
import struct
import sys
import threading
import zlib


def png(side, claimed=0, height=0):
    """Returns a red square or another rectangle, whose head may claim another size."""
    def part(kind, data):
        return (struct.pack('>I', len(data)) + kind + data +
                struct.pack('>I', zlib.crc32(kind + data)))
    head = struct.pack('>IIBBBBB', claimed or side, claimed or height or side, 8, 2, 0, 0, 0)
    rows = (b'\0' + b'\xff\0\0' * side) * (height or side)
    return (b'\x89PNG\r\n\x1a\n' + part(b'IHDR', head) + part(b'IDAT', zlib.compress(rows)) + part(b'IEND', b''))


def page(title, icons):
    links = ''.join(f'<link rel="icon" href="{icon}">' for icon in icons)
    return f'<title>{title}</title>{links}<body>'.encode()


PAGES = {
    '/mail/': page('Mail &amp; more', ['icon.png']),
    '/mail/icon.png': png(64),
    '/hostile': page('../..//\u202eevil\n\x1b[31m', ['file:///etc/passwd', 'data:image/png,x',
                                                    'javascript:x', '/mail/icon.png']),
    '/broken-icon': page('Broken', ['/bad.png']),
    '/bad.png': b'\x89PNG\r\n\x1a\n' + b'x' * 5000,
    # A picture that would take four gigabytes.
    '/bomb-icon': page('Bomb', ['/bomb.png']),
    '/bomb.png': png(1, 32000),
    '/huge-icon': page('Huge', ['/endless']),
    '/drawn-icon': page('Drawn', ['/drawn.svg']),
    '/drawn.svg': b'<svg xmlns="http://www.w3.org/2000/svg" width="700" height="350">'
                  b'<rect width="700" height="350" fill="red"/></svg>',
    '/large-icon': page('Large', ['/large.png']),
    '/large.png': png(600),
    # A second one is tried if the first one is nothing.
    '/second-icon': page('Second', ['/bad.png', '/mail/icon.png']),
    '/wide-icon': page('Wide', ['/wide.png']),
    '/wide.png': png(4100, height=400),
    '/moved/4': page('Moved', []),
}


class Site(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        if self.path == '/never':
            threading.Event().wait()
        if self.path in ('/endless', '/endless-page'):
            self.send_response(200)
            self.end_headers()
            try:
                self.wfile.write(b'<title>Endless</title>')
                while True:
                    self.wfile.write(b' ' * 65536)
            except OSError:
                return
        if self.path.startswith('/round') or self.path in ('/moved/1', '/moved/2', '/moved/3'):
            self.send_response(302)
            step = int(self.path.split('/')[2]) + 1
            self.send_header('Location', f"/{self.path.split('/')[1]}/{step}")
            self.end_headers()
            return
        if self.path == '/to-file':
            self.send_response(302)
            self.send_header('Location', 'file:///etc/passwd')
            self.end_headers()
            return
        body = PAGES.get(self.path)
        self.send_response(200 if body is not None else 404)
        self.send_header('Set-Cookie', 'id=1')
        self.end_headers()
        self.wfile.write(body or b'')

    def log_message(self, *_):
        log.write(self.path + ' ' + str(self.headers.get('Cookie')) + '\n')


log = open(sys.argv[2], 'a', buffering=1, encoding='utf-8')
server = http.server.ThreadingHTTPServer(('127.0.0.1', 0), Site)
with open(sys.argv[1] + '.part', 'w', encoding='utf-8') as file:
    file.write(str(server.server_port))
os.rename(sys.argv[1] + '.part', sys.argv[1])
server.serve_forever()
