"""A system bus at a socket in a folder, with a fake ModemManager."""
import json
import os
import pathlib
import subprocess

STAND_IN = pathlib.Path(__file__).resolve().parents[1] / "integration/clients/modem_manager.py"
BUS = """<busconfig>
  <type>custom</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="signal"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
  </policy>
</busconfig>
"""


class ModemManager:
    """Stands while its `with` does. MODEMS are as modem_manager.py has them."""

    def __init__(self, socket, modems):
        self._socket = socket
        self._modems = modems
        self._programs = []

    def __enter__(self):
        configuration = self._socket.with_suffix(".conf")
        configuration.write_text(BUS.format(socket=self._socket), encoding="utf-8")
        bus = subprocess.Popen(["dbus-daemon", "--nofork", f"--config-file={configuration}", "--print-address"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self._programs.append(bus)
        address = bus.stdout.readline().strip()
        self._programs.append(subprocess.Popen(
            ["/usr/bin/python3", "-B", STAND_IN, json.dumps(self._modems)],
            env=os.environ | {"DBUS_SYSTEM_BUS_ADDRESS": address}))
        return self

    def __exit__(self, *_):
        for program in reversed(self._programs):
            program.terminate()
            program.wait(60)
