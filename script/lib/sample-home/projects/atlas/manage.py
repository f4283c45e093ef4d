#!/usr/bin/env python3
"""Serves the map; stands in for a Django project."""

from http.server import BaseHTTPRequestHandler, HTTPServer


class Map(BaseHTTPRequestHandler):
    def do_GET(self):
        self.send_response(200)
        self.end_headers()
        self.wfile.write(b"<h1>Atlas</h1>")


server = HTTPServer(("127.0.0.1", 8000), Map)
print("System check identified no issues (0 silenced).", flush=True)
print("Starting development server at http://127.0.0.1:8000/", flush=True)
server.serve_forever()
