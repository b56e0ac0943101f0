# gdb runs this when it loads qzrcore.dll from the folder in which it lies, if that folder is on its safe path.
import os
import sys

import gdb

bin_folder = os.path.dirname(gdb.current_objfile().filename)
sys.path.insert(0, os.path.join(os.path.dirname(bin_folder), "share", "qzrcore", "gdb"))
import qzrcore_printers

qzrcore_printers.register(gdb.current_objfile())
