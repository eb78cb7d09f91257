"""A backend on loopback that saves whatever it is sent."""
import http.server
import json
import threading

ANSWER = {
    "saved": True, "transaction_type": "expense",
    "expense": {"id": "e1", "description": "Cafe", "amount": 150.0, "category": "Food", "expense_date": "2026-11-21"},
}


class Backend:
    """Saves every text that it is sent as an expense of 150, and remembers the requests."""

    def __init__(self):
        self.requests = []
        self._news = threading.Condition()
        outer = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                body = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                with outer._news:
                    outer.requests.append(body)
                    outer._news.notify_all()
                answer = json.dumps(ANSWER).encode()
                self.send_response(200)
                self.send_header("Content-Length", str(len(answer)))
                self.end_headers()
                self.wfile.write(answer)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def texts(self, count, seconds=60):
        """The texts it was sent, sorted, once there are `count` or the time is over."""
        with self._news:
            self._news.wait_for(lambda: len(self.requests) >= count, seconds)
            return sorted(request["sms_text"] for request in self.requests)

    def close(self):
        self._server.shutdown()
        self._server.server_close()
