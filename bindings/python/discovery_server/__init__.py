"""Finds devices on the local networks and talks with them: the library DiscoveryServer.ExtC for Python.

    with discovery_server.Session("discovery.log") as session:
        session.discover()
        for event in session.events(timeout=2):
            print(event.kind.value, event.host["HostName"])

Everything that fails raises: DiscoveryError when the library refuses, with its code; LibraryError when the library
cannot be used; ValueError for a text that cannot be handed over; TypeError for what is no text, or no list.
"""

from __future__ import annotations

import atexit
import collections
import ctypes
import enum
import json
import logging
import os
import threading
import time
from dataclasses import dataclass
from types import TracebackType
from typing import (
    Any,
    Callable,
    Deque,
    Dict,
    Iterable,
    Iterator,
    List,
    Mapping,
    Optional,
    Set,
    Tuple,
    Type,
    TypedDict,
    TypeVar,
    Union,
)

from ._native import IS_WINDOWS, Functions, LibraryError, NativeLibrary, Path

__all__ = [
    "DiscoveryError",
    "Document",
    "ErrorCode",
    "Event",
    "EventKind",
    "Host",
    "LIBRARY_VARIABLE",
    "LibraryError",
    "LogLevel",
    "Nic",
    "NicSettings",
    "Product",
    "Session",
]

__version__ = "1.0.0"

LIBRARY_VARIABLE = "DISCOVERY_LIBRARY"
"""The environment variable that names the library's file for sessions that are not given a path."""

_logger = logging.getLogger(__name__)


class LogLevel(enum.IntEnum):
    """How much goes into the library's log."""

    CRITICAL = 1
    """Life cycle, rejected messages, failures."""
    STANDARD = 2
    """And requests and handled messages."""
    DEBUG = 3
    """And the text of every message."""
    NONE = 255
    """No lines about events at all."""


class ErrorCode(enum.IntEnum):
    """Codes that a host meets; DiscoveryError.code may hold others, too."""

    ARGUMENT_NULL = 9
    ARGUMENT_OUT_OF_RANGE = 10
    OUT_OF_MEMORY = 27
    INVALID_OPERATION = 30
    """The session is closed, another one is open, or the call is not allowed in a handler."""
    NULL_POINTER = 41
    """A request while the server is not started, or while it restarts itself."""
    IO = 58
    """The log cannot be opened: access denied, a folder in its place, a path too long."""
    DIRECTORY_NOT_FOUND = 59
    """The log's path leads nowhere, such as to a missing drive."""
    FILE_NOT_FOUND = 64
    """The log's path is empty, or leads nowhere."""
    SOCKET = 73
    """The network refused, for instance because UDP port 12001 is taken."""
    RESOURCE_NOT_FOUND = 0xC0090109
    """Settings lack a required member."""
    INVALID_FORMAT = 0xC0090114
    """A text is not the MAC address, IP address, version or JSON that it should be."""


class EventKind(enum.Enum):
    """What a device has sent."""

    SIGNATURE = "signature"
    """What it is: the answer to a request, or its own announcement of a change."""
    HELLO = "hello"
    """It announces itself, usually because it has started."""
    BYE = "bye"
    """It takes its leave."""


class _NicAddress(TypedDict):
    FriendlyName: str
    MACAddress: str
    IPAddress: str
    SubNetMask: str
    DefaultGateway: str


class Nic(_NicAddress):
    """A network interface of a device. "DefaultGateway" is "" for none, "MTU" is "Unknown" when it is not known."""

    MTU: str


class NicSettings(_NicAddress, total=False):
    """New settings of the interface with the MAC address; "DefaultGateway" is "" for none."""

    MTU: str


class Product(TypedDict):
    """A product that is installed on a device."""

    ProductType: str
    ProductSerialNumber: str
    ProductVersion: str
    ProductName: str


class Host(TypedDict):
    """A device."""

    HostName: str
    IsHostNameReadOnly: bool
    RebootRequiredForIPConfigChange: bool
    RebootRequiredForHostNameChange: bool
    DeviceType: str
    DeviceFamily: str
    SerialNumber: str
    NICs: List[Nic]
    Products: List[Product]
    FileTransferInfos: Dict[str, str]


class _HostDocument(TypedDict):
    Host: Host


class Document(_HostDocument, total=False):
    """What the library tells about a device; "SourceNIC" is missing when the device did not name its interface."""

    SourceNIC: Nic


@dataclass(frozen=True)
class Event:
    """A message of a device."""

    kind: EventKind
    document: Document
    """Texts are as the device sent them, with U+FFFD for bytes that are not UTF-8. They may hold control characters."""

    @property
    def host(self) -> Host:
        """The device."""
        return self.document["Host"]

    @property
    def source_nic(self) -> Optional[Nic]:
        """The interface that the message was sent from, when the device named it."""
        return self.document.get("SourceNIC")


class DiscoveryError(Exception):
    """The library has refused a call, and nothing has changed unless the call says otherwise."""

    def __init__(self, function: str, code: int, text: str) -> None:
        shown = str(code) if code < 0x80000000 else f"0x{code:08X}"
        super().__init__(f"{function} failed: {text} (code {shown})")
        self.function = function
        """The name of the library's function."""
        self.code = code
        """The library's code, not negative: see ErrorCode."""
        self.text = text
        """The library's text of the code."""


Handler = Callable[[Event], None]
_Element = TypeVar("_Element")
_Listener = Callable[[EventKind, bytes], None]  # takes documents as they come, on the library's thread

_FUNCTIONS: Functions = {
    "Initialize": (ctypes.c_char_p, ctypes.c_int),
    "Terminate": (),
    "StartServer": (),
    "StopServer": (),
    "GetErrorMessage": (ctypes.c_int,),
    "Discover": (),
    "ChangeClientsIPConfigurations": (ctypes.c_char_p,),
    "ChangeClientsHostName": (ctypes.c_char_p, ctypes.c_char_p),
    "ChangeClientsHostNameWithIP": (ctypes.c_char_p, ctypes.c_char_p),
    "RefreshClient": (ctypes.c_char_p,),
    "ReachClient": (ctypes.c_char_p,),
    "SetClientSignatureReceivedEventCallBack": (ctypes.c_void_p,),
    "SetHelloMessageReceivedEventCallBack": (ctypes.c_void_p,),
    "SetByeMessageReceivedEventCallBack": (ctypes.c_void_p,),
    "InitBroadcastProvider": (ctypes.c_char_p,),
    "SetMinCompatibleVersion": (ctypes.c_char_p,),
}
_SETTERS = {
    EventKind.SIGNATURE: "SetClientSignatureReceivedEventCallBack",
    EventKind.HELLO: "SetHelloMessageReceivedEventCallBack",
    EventKind.BYE: "SetByeMessageReceivedEventCallBack",
}


class _Library(NativeLibrary):
    """The sixteen functions of the library."""

    def __init__(self, path: Optional[Path]) -> None:
        super().__init__("DiscoveryServer.ExtC", path, LIBRARY_VARIABLE, _FUNCTIONS)
        self.functions["GetErrorMessage"].restype = ctypes.c_void_p  # c_char_p would lose the address to free
        memory = ctypes.CDLL("ole32") if IS_WINDOWS else ctypes.CDLL(None)
        self._free = memory.CoTaskMemFree if IS_WINDOWS else memory.free
        self._free.argtypes = (ctypes.c_void_p,)
        self._free.restype = None

    def is_same(self, other: _Library) -> bool:
        """True for two loads of one file, which have one state."""
        return self.library._handle == other.library._handle

    def call(self, name: str, *arguments: Any) -> int:
        """The function's result code, which is not negative."""
        code: int = self.functions[name](*arguments)
        return code & 0xFFFFFFFF

    def error(self, name: str, code: int) -> DiscoveryError:
        message = self.functions["GetErrorMessage"](ctypes.c_int(code).value)
        if not message:
            return DiscoveryError(name, code, "no memory is left for the text")
        try:
            return DiscoveryError(name, code, ctypes.string_at(message).decode("utf-8", "replace"))
        finally:
            self._free(message)

    def check(self, name: str, code: int) -> None:
        if code != 0:
            raise self.error(name, code)


_callback_type: Any = getattr(ctypes, "WINFUNCTYPE" if IS_WINDOWS else "CFUNCTYPE")(None, ctypes.c_char_p)
_in_handler = threading.local()

# Held during Initialize, StartServer, StopServer and Terminate, which may wait for a handler: never taken in one.
_life_cycle = threading.Lock()

# Keeps sessions, and with them the callbacks that the library calls, from being collected. Guarded by _life_cycle.
_open_sessions: Set[Session] = set()


def _text(value: str) -> bytes:
    if not isinstance(value, str):
        raise TypeError(f"a text is expected, not {value!r}")
    return _without_nul(value.encode("utf-8"))


def _list(values: Iterable[_Element]) -> List[_Element]:
    """A text or a single document is iterable, too, and yet not what was meant."""
    if isinstance(values, (str, bytes, Mapping)):
        raise TypeError(f"a list is expected, not {values!r}")
    return list(values)


def _without_nul(text: bytes) -> bytes:
    if b"\0" in text:
        raise ValueError("a text must not contain NUL")
    return text


class Session:
    """The library in use: from the constructor, which opens the log, until close.

    There is one session at a time in a process; a second one raises DiscoveryError with INVALID_OPERATION. As a context
    manager a session starts the server at once and is closed at the end. A session that nobody closes is closed when
    Python ends; until then it stays open even when no variable refers to it. In a child made by fork it is closed.

    Events go to the handlers on_signature, on_hello and on_bye, which may be set at any time, and to events().
    Handlers run one at a time on a thread of the library, which sends nothing meanwhile: they should return soon. They
    may make requests; start, stop, close and events raise DiscoveryError with INVALID_OPERATION there. What a
    handler raises goes to on_error, or to the logger "discovery_server" when there is none, and goes no further.

    All methods may be called from any thread.
    """

    def __init__(
        self,
        log_path: Path,
        log_level: LogLevel = LogLevel.STANDARD,
        *,
        library: Optional[Path] = None,
        local_addresses: Optional[Iterable[str]] = None,
        on_signature: Optional[Handler] = None,
        on_hello: Optional[Handler] = None,
        on_bye: Optional[Handler] = None,
        on_error: Optional[Callable[[BaseException], None]] = None,
        max_waiting_events: int = 10000,
    ) -> None:
        """Loads the library and opens the log; the server is not started yet.

        log_path: the log file, which is continued; missing folders are created.
        library: the library's file. Without it the environment variable DISCOVERY_LIBRARY names it; without that it is
            the one that came with the module, or else libDiscoveryServer.ExtC.so.1 or DiscoveryServer.ExtC.dll, for
            which the system searches.
        local_addresses: as for init_broadcast_provider.
        max_waiting_events: how many events wait for events(); the oldest are lost when more come.
        Raises LibraryError, and DiscoveryError when the log cannot be opened or another session is open.
        """
        self.on_signature = on_signature
        self.on_hello = on_hello
        self.on_bye = on_bye
        self.on_error = on_error
        self._log = (_without_nul(os.fsencode(log_path)), int(log_level))
        self._addresses = None if local_addresses is None else _text(json.dumps(_list(local_addresses)))
        self._library = _Library(library)
        self._callbacks = {kind: self._make_callback(kind) for kind in EventKind}  # constant; they live until close
        self._is_started = False  # guarded by _life_cycle
        # Held during a request, so that none is under way when the library is terminated; never while a handler runs.
        self._requests = threading.Lock()
        self._is_open = False  # guarded by _requests
        self._arrived = threading.Condition()
        self._waiting: Deque[Event] = collections.deque(maxlen=max_waiting_events)  # guarded by _arrived
        self._lost = 0  # guarded by _arrived
        self._is_ended = False  # guarded by _arrived
        self._listeners: Tuple[_Listener, ...] = ()  # replaced, never changed
        self._refuse_in_handler("Initialize")
        with _life_cycle:
            if any(session._library.is_same(self._library) for session in _open_sessions):
                raise self._invalid_operation("Initialize")
            self._open()
            _open_sessions.add(self)

    def __enter__(self) -> Session:
        """Starts the server."""
        try:
            self.start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()

    def start(self) -> None:
        """Binds UDP port 12001 and starts the server; does nothing when it is started.

        After a failure the session is as before, and start may be tried again.
        """
        self._refuse_in_handler("StartServer")
        with _life_cycle:
            self._check_open("StartServer")
            if self._is_started:
                return
            self._change_or_reopen("StartServer")
            self._is_started = True
            if self._addresses is not None:
                code = self._library.call("InitBroadcastProvider", self._addresses)
                if code != 0:
                    error = self._library.error("InitBroadcastProvider", code)
                    self._is_started = False
                    self._change_or_reopen("StopServer")
                    raise error

    def stop(self) -> None:
        """Stops the server and releases its port; does nothing when it is stopped.

        Requests that still wait are discarded. Returns after a running handler has returned; none runs afterwards.
        """
        self._refuse_in_handler("StopServer")
        with _life_cycle:
            self._check_open("StopServer")
            self._is_started = False
            self._change_or_reopen("StopServer")

    def close(self) -> None:
        """Stops the server and closes the log; does nothing when the session is closed.

        Returns after a running handler has returned; none runs afterwards.
        """
        self._refuse_in_handler("Terminate")
        with _life_cycle:
            if not self._set_open(False):
                return
            code = self._library.call("Terminate")
            if code != 0:
                self._set_open(True)
                raise self._library.error("Terminate", code)
            self._forget()

    def discover(self) -> None:
        """Asks every device for its signature."""
        self._request("Discover")

    def refresh_client(self, mac_address: str) -> None:
        """Asks the device that owns a MAC address, such as "00:1A:2B:3C:4D:5E", for its signature."""
        self._request("RefreshClient", _text(mac_address))

    def reach_client(self, ip_address: str) -> None:
        """Asks the device at an IP address for its signature."""
        self._request("ReachClient", _text(ip_address))

    def change_clients_host_name(self, new_host_name: str, mac_address: str) -> None:
        """Tells the device that owns a MAC address to take a new host name."""
        self._request("ChangeClientsHostName", _text(new_host_name), _text(mac_address))

    def change_clients_host_name_with_ip(self, new_host_name: str, ip_address: str) -> None:
        """Tells the device at an IP address to take a new host name; at 255.255.255.255 no device takes it."""
        self._request("ChangeClientsHostNameWithIP", _text(new_host_name), _text(ip_address))

    def change_clients_ip_configurations(self, settings: Iterable[Union[Nic, NicSettings]]) -> None:
        """Tells devices to configure their network interfaces anew: each takes what bears its MAC addresses."""
        self._request("ChangeClientsIPConfigurations", _text(json.dumps(_list(settings))))

    def init_broadcast_provider(self, local_addresses: Iterable[str]) -> None:
        """Makes every broadcast leave once from each of these IP addresses of this machine.

        Lasts until the next call, over stop and start too. While there are no addresses, nothing is broadcast.
        """
        addresses = _text(json.dumps(_list(local_addresses)))
        self._request("InitBroadcastProvider", addresses)
        self._addresses = addresses

    def set_min_compatible_version(self, version: str) -> None:
        """Drops messages of protocol versions older than this, such as "1.0.18"; "0.0" takes all.

        Holds for the process, for later sessions too.
        """
        self._request("SetMinCompatibleVersion", _text(version))

    def events(self, timeout: Optional[float] = None) -> Iterator[Event]:
        """Yields the events of all kinds, those that wait already first; several iterators share them.

        Ends when the session is closed, or when none has come for timeout seconds; None waits without limit.
        """
        while True:
            event = self._next_event(timeout)
            if event is None:
                return
            yield event

    __iter__ = events

    @property
    def lost_events(self) -> int:
        """How many events events() has missed because too many waited."""
        with self._arrived:
            return self._lost

    def _open(self) -> None:
        self._library.check("Initialize", self._library.call("Initialize", *self._log))
        try:
            for kind, setter in _SETTERS.items():
                self._library.check(setter, self._library.call(setter, self._callbacks[kind]))
        except BaseException:
            self._library.call("Terminate")
            raise
        self._set_open(True)

    def _set_open(self, is_open: bool) -> bool:
        """Returns what it was before. Waits for the requests under way."""
        with self._requests:
            before = self._is_open
            self._is_open = is_open
            return before

    def _change_or_reopen(self, function: str) -> None:
        """Starts or stops. The library wants to be terminated and initialized after a failure of these."""
        code = self._library.call(function)
        if code == 0:
            return
        error = self._library.error(function, code)
        self._set_open(False)
        if self._library.call("Terminate") == 0:
            try:
                self._open()
            except DiscoveryError:
                self._forget()  # the log is gone: what is left is a closed session
        else:
            self._set_open(True)
        raise error

    def _forget(self) -> None:
        _open_sessions.discard(self)
        with self._arrived:
            self._is_ended = True
            self._arrived.notify_all()

    def _abandon(self) -> None:
        """In a child made by fork, which has none of the library's threads: whatever was locked stays locked."""
        self._requests = threading.Lock()
        self._arrived = threading.Condition()
        self._is_open = False
        self._is_ended = True

    def _check_open(self, function: str) -> None:
        with self._requests:
            if not self._is_open:
                raise self._invalid_operation(function)

    def _invalid_operation(self, function: str) -> DiscoveryError:
        return self._library.error(function, ErrorCode.INVALID_OPERATION)

    def _refuse_in_handler(self, function: str) -> None:
        # The library refuses this, too, but not before our own lock is taken, whose owner may wait for the handler.
        if getattr(_in_handler, "depth", 0):
            raise self._invalid_operation(function)

    def _request(self, function: str, *arguments: bytes) -> None:
        with self._requests:
            if not self._is_open:
                raise self._invalid_operation(function)
            code = self._library.call(function, *arguments)
        self._library.check(function, code)

    def _make_callback(self, kind: EventKind) -> Any:
        def receive(host_json: bytes) -> None:
            _in_handler.depth = 1
            try:
                self._receive(kind, host_json)
            except BaseException as error:  # also SystemExit: nothing may leave a callback
                self._report(error)
            finally:
                _in_handler.depth = 0

        return _callback_type(receive)

    def _add_listener(self, listener: _Listener) -> None:
        with self._arrived:
            self._listeners += (listener,)

    def _remove_listener(self, listener: _Listener) -> None:
        with self._arrived:
            self._listeners = tuple(each for each in self._listeners if each != listener)

    def _receive(self, kind: EventKind, host_json: bytes) -> None:
        for listener in self._listeners:
            listener(kind, host_json)
        event = Event(kind, json.loads(host_json.decode("utf-8", "replace")))
        with self._arrived:
            if len(self._waiting) == self._waiting.maxlen:
                self._lost += 1
            self._waiting.append(event)
            self._arrived.notify()
        handler: Optional[Handler] = getattr(self, f"on_{kind.value}")
        if handler is not None:
            handler(event)

    def _report(self, error: BaseException) -> None:
        try:
            if self.on_error is None:
                _logger.error("a handler has failed", exc_info=error)
            else:
                self.on_error(error)
        except BaseException as second:
            _logger.error("the handler of errors has failed", exc_info=second)

    def _next_event(self, timeout: Optional[float]) -> Optional[Event]:
        self._refuse_in_handler("events")
        deadline = None if timeout is None else time.monotonic() + timeout
        with self._arrived:
            while not self._waiting:
                remaining = 1.0 if deadline is None else deadline - time.monotonic()
                if self._is_ended or remaining <= 0:
                    return None
                self._arrived.wait(min(remaining, 1.0))  # on Windows Ctrl-C takes effect between waits only
            return self._waiting.popleft()


@atexit.register
def _close_all() -> None:
    # Before the interpreter goes: a callback that comes later would find nothing to run in.
    for session in list(_open_sessions):
        try:
            session.close()
        except DiscoveryError:
            _logger.exception("cannot close a session at the end of Python")


def _forget_all() -> None:
    global _life_cycle
    _life_cycle = threading.Lock()
    for session in _open_sessions:
        session._abandon()
    _open_sessions.clear()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_forget_all)
