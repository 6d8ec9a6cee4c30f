"""Commands without a suffix as modules, for those who use a part of one."""

import importlib.machinery
import importlib.util
import os
import sys

sys.dont_write_bytecode = True


def as_module(path):
    path = str(path)
    loader = importlib.machinery.SourceFileLoader(os.path.basename(path).replace("-", "_"), path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module
