"""Loading of the libraries of this package."""

from __future__ import annotations

import ctypes
import os
import sys
from typing import Any, Dict, Optional, Tuple, Union

Path = Union[str, "os.PathLike[str]"]
Functions = Dict[str, Tuple[Any, ...]]  # the types of the arguments by name

IS_WINDOWS = sys.platform == "win32"


class LibraryError(OSError):
    """The library could not be loaded, or is not the library that it should be."""


class NativeLibrary:
    """A loaded library, with functions that give a code. They let other Python threads run while they work."""

    def __init__(self, product: str, path: Optional[Path], variable: str, functions: Functions) -> None:
        """product: the library's name without what systems add to it; variable: of the environment, with a path."""
        name = self._file(product, path or os.environ.get(variable) or None)
        loader: Any = getattr(ctypes, "WinDLL" if IS_WINDOWS else "CDLL")
        try:
            self.library: ctypes.CDLL = loader(name)
        except OSError as error:
            raise LibraryError(
                f"cannot load the library {name}: {error}; give its path as the argument library or in the "
                f"environment variable {variable}"
            ) from error
        self.functions = {each: self._bind(product, each, arguments) for each, arguments in functions.items()}

    @staticmethod
    def _file(product: str, path: Optional[Path]) -> str:
        """Without a path the file that lies beside this module, as it does in wheels; else the name by which the system
        finds it."""
        if path is not None:
            return os.path.abspath(path)  # the system would search its folders for a name without one
        usual = f"{product}.dll" if IS_WINDOWS else f"lib{product}.so.1"  # its ABI
        own = os.path.join(os.path.dirname(os.path.abspath(__file__)), usual)
        return own if os.path.exists(own) else usual

    def _bind(self, product: str, name: str, arguments: Tuple[Any, ...]) -> Any:
        is_decorated = IS_WINDOWS and ctypes.sizeof(ctypes.c_void_p) == 4
        try:
            function = self.library[f"_{name}@{sum(map(ctypes.sizeof, arguments))}" if is_decorated else name]
        except AttributeError as error:
            raise LibraryError(f"{self.library._name} lacks the function {name}: it is not {product}") from error
        function.argtypes = arguments
        function.restype = ctypes.c_int
        return function
