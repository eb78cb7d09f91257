"""The ledger in alice's session: her service manager starts it, confines it and ends it."""
import json
import re
import time

from clean_root import check

MESSAGE = "Your card was charged EGP {} at Bakery"
# More than the minute after which the ledger ends, as a busy machine may be late.
IDLE_SECONDS = 90
# Runs before the ledger, under its confinement, and fails the start if it can connect to a port of this machine.
PROBE = """
mkdir -p ~/.config/systemd/user/kivo-ledger.service.d
cat >~/.config/systemd/user/kivo-ledger.service.d/probe.conf <<'END'
[Service]
ExecStartPre=/bin/bash -c '! (exec 3<>/dev/tcp/127.0.0.1/{port})'
END
systemctl --user daemon-reload
systemctl --user stop kivo-ledger.service
"""


def keep_a_book(session, backend):
    """From a message until the ledger ends by itself. She is signed in to it, and has no entry of the bakery."""
    def send(amount):
        return session.alice("kivo-intents perform ProcessSMSIntent --smsText -", MESSAGE.format(amount))

    def amounts():
        return sorted(entry["amount"] for entry in json.loads(session.alice("kivo-ledger list --search Bakery --json")))

    def state():
        return session.alice("systemctl --user show --property=ActiveState --value kivo-ledger.service").strip()

    port = backend.url.rpartition(":")[2]
    session.alice(f"bash -c 'exec 3<>/dev/tcp/127.0.0.1/{port}'")  # without the confinement there is a network
    session.alice(PROBE.format(port=port))
    check(state() == "inactive" and send("1.00") == "Tracked EGP\u00a01.00 at Bakery\n" and amounts() == ["1.00"],
          "a message starts the ledger, which books it")
    status = session.status_of("kivo-ledger.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the ledger is confined, and has no network")
    check(int(status["CapBnd"], 16) == 0, "the ledger has no capabilities")

    session.alice("systemctl --user enable --now kivo-ledger-backup.timer")
    session.alice("systemctl --user start kivo-ledger-backup.service")
    written = session.alice("ls -l ~/.local/share/kivo-backups").splitlines()[1:]
    check(len(written) == 1 and re.match(r"-rw------- .* kivo-\d{4}-\d\d-\d\d\.kivo$", written[0]) is not None,
          "the timer's unit writes the backup of the day")
    session.alice("systemctl --user disable --now kivo-ledger-backup.timer")

    session.alice("systemctl --user kill --signal=KILL kivo-ledger.service")
    check(send("2.00") == "Tracked EGP\u00a02.00 at Bakery\n" and amounts() == ["1.00", "2.00"],
          "a ledger that was killed is started by the next message")

    session.alice("systemctl --user stop kivo-ledger.socket kivo-ledger.service")
    check(send("3.00").endswith("\nSaved offline - will process when connected\n"),
          "a message waits while the ledger is stopped")
    session.alice("systemctl --user start kivo-ledger.socket && kivo-phone queue send")
    check(amounts() == ["1.00", "2.00", "3.00"], "what waited is booked once the ledger is back")

    end = time.monotonic() + IDLE_SECONDS
    while state() != "inactive" and time.monotonic() < end:
        time.sleep(1)
    check(state() == "inactive", "the ledger ends by itself after a minute without a request")
