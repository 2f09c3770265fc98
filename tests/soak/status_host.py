#!/usr/bin/python3
"""The desktop's panel for an evening: shows status items and prints what theirs say whenever they change."""

import sys
from pathlib import Path

from gi.repository import GLib

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "ui"))
from status_panel import ITEM, StatusPanel  # noqa: E402

panel = StatusPanel()


def show(*_arguments):
    if panel.items:
        print(panel.property("Status"), panel.property("IconName"), panel.property("ToolTip")[2], flush=True)


for signal in ("NewIcon", "NewStatus", "NewToolTip"):
    panel.bus.add_signal_receiver(show, signal, ITEM)
GLib.MainLoop().run()
