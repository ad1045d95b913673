"""Corvale in Python: the library's procedures over arrays, and its C face in `corvale.capi`.
"""
from corvale import capi as capi
from corvale._arrays import *
