#!/usr/bin/env python3
"""Prints the Codex account limits as one JSON document."""
import sys

sys.exit("vantrel.py: not implemented yet")
