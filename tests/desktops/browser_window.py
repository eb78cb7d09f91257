#!/usr/bin/python3 -B
"""A small browser: a window with the page of a file or an address. It has the page's title once it shows the page."""
import pathlib
import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("WebKit2", "4.1")
from gi.repository import Gtk, WebKit2  # noqa: E402


def main(address):
    view = WebKit2.WebView()
    window = Gtk.Window(title="Browser", default_width=900, default_height=620, child=view)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()

    def drawn(*_):
        view.get_frame_clock().connect("after-paint", lambda _: window.set_title(view.get_title() or address))
        view.queue_draw()

    def changed(_, event):
        if event == WebKit2.LoadEvent.FINISHED:
            view.get_snapshot(WebKit2.SnapshotRegion.VISIBLE, WebKit2.SnapshotOptions.NONE, None, drawn)

    view.connect("load-changed", changed)
    view.load_uri(address if ":" in address else pathlib.Path(address).as_uri())
    Gtk.main()


main(*sys.argv[1:])
