import os
import sys

# The tree's ansible/ folder is a collections path: the tests import the collection from it.
sys.path.insert(0, os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", "..", "..", "..")))
