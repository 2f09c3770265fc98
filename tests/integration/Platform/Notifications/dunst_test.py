"""Runs the test program in the surroundings that run_ui_test.sh makes: a display, a session bus and an empty home."""

import os
import sys

os.execv(os.environ["CAIRNFIELD_PROGRAM"], [os.environ["CAIRNFIELD_PROGRAM"], *sys.argv[1:]])
