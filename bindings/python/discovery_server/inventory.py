"""Which devices are on the network, what becomes of them, and whether that is all: the library DiscoveryInventory.

    with discovery_server.Session("discovery.log") as session, Inventory(session) as inventory:
        for device in inventory.discover():
            print(device.host["HostName"])
        for change in inventory.changes(timeout=60):
            print(change.kind.value, change.host and change.host["HostName"])

The devices can be changed, too; each change is checked before it is sent, and looked at afterwards:

    outcome = inventory.rename("press-4", mac_address="00:1A:2B:3C:4D:5E")
    inventory.undo(outcome)

An inventory that keeps a journal can take changes back later, too, as after a start anew: inventory.undo().
"""

from __future__ import annotations

import asyncio
import contextlib
import ctypes
import enum
import functools
import json
import logging
import os
import queue
import threading
import time
from dataclasses import dataclass, field
from types import TracebackType
from typing import Any, AsyncIterator, Callable, Dict, Iterable, Iterator, List, Mapping, Optional, Tuple, Type

from . import DiscoveryError, Document, EventKind, Host, Nic, NicSettings, Session, _list
from ._native import Functions, NativeLibrary, Path

__all__ = [
    "Change",
    "ChangeFailedError",
    "ChangeKind",
    "Conflict",
    "Device",
    "DeviceState",
    "Difference",
    "INVENTORY_LIBRARY_VARIABLE",
    "IncompleteSearchError",
    "Inventory",
    "InventoryError",
    "JournalEntry",
    "Outcome",
    "Verdict",
]

INVENTORY_LIBRARY_VARIABLE = "DISCOVERY_INVENTORY_LIBRARY"
"""The environment variable that names the library's file for inventories that are not given a path."""

_logger = logging.getLogger(__name__)
_BATCH_TIME = 0.02  # seconds, in which messages are collected
_LONGEST_WAIT = 1.0
_MESSAGES = {EventKind.SIGNATURE: 0, EventKind.HELLO: 1, EventKind.BYE: 2}


class DeviceState(enum.Enum):
    """What has become of a device."""

    PRESENT = "present"
    STALE = "stale"
    """Silent for a while; is going to be asked."""
    ASKED = "asked"
    GONE = "gone"
    """Has answered none of several questions."""
    LEFT = "left"
    """Has said Bye."""
    FLAPPING = "flapping"
    """Comes and goes."""


class ChangeKind(enum.Enum):
    """What an inventory has to tell."""

    APPEARED = "appeared"
    CHANGED = "changed"
    LEFT = "left"
    """It said Bye."""
    GONE = "gone"
    """It answers no more."""
    RETURNED = "returned"
    FLAPPING = "flapping"
    """It comes and goes; that is not told any more until it has settled."""
    SETTLED = "settled"
    FORGOTTEN = "forgotten"
    """It gave way to another one: there are too many."""
    CONFLICT = "conflict"


@dataclass(frozen=True)
class _Documented:
    document: Document
    """Texts are as the device sent them, with U+FFFD for bytes that are not UTF-8."""

    @property
    def host(self) -> Host:
        """The device."""
        return self.document["Host"]

    @property
    def source_nic(self) -> Optional[Nic]:
        """The interface that the device was heard from, when it named it."""
        return self.document.get("SourceNIC")


@dataclass(frozen=True)
class Device(_Documented):
    """A device of the inventory."""

    state: DeviceState
    is_here: bool
    """Neither gone nor left."""
    first_seen: float
    """As time.time() has it."""
    last_seen: float


@dataclass(frozen=True)
class Difference:
    """A property, such as HostName, that a device tells otherwise than before."""

    property: str
    before: Optional[str]
    """None when it was not there."""
    after: Optional[str]


@dataclass(frozen=True)
class Conflict:
    """Devices that cannot all be as they say."""

    kind: str
    """mac, ip or name."""
    value: str
    """The address or name that they have in common."""
    count: int
    first: Document
    second: Document


@dataclass(frozen=True)
class Change(_Documented):
    """Something that has happened to a device."""

    kind: ChangeKind
    differences: List[Difference] = field(default_factory=list)
    conflict: Optional[Conflict] = None
    """Of ChangeKind.CONFLICT; document is that of its second device."""


class Verdict(enum.Enum):
    """What has come of a change of a device."""

    APPLIED = "applied"
    REBOOT_NEEDED = "reboot-needed"
    """It does not show the change, or is silent, and has said that it takes such changes when it starts anew."""
    REFUSED = "refused"
    """It answers, and does not show the change."""
    NO_ANSWER = "no-answer"
    NOT_SENT = "not-sent"
    """Something was wrong with the request."""


@dataclass(frozen=True)
class Outcome:
    """A change of a device that has ended."""

    verdict: Verdict
    mac_address: str
    """Of the interface that was meant; "" when it is not known."""
    seconds: float = 0.0
    """From the request to the verdict."""
    before: Optional[Dict[str, str]] = None
    """What the device had: "HostName", or the settings of the interface. None when it is not known."""
    after: Optional[Dict[str, str]] = None
    """What it has said last since it was told to change; None when it has not."""
    code: str = ""
    """Why it was not sent, such as name-taken."""
    text: str = ""
    """The same for people."""
    _undo: Optional[Dict[str, str]] = None
    _entry: str = ""  # in the journal


@dataclass(frozen=True)
class JournalEntry:
    """A change of a device as the journal has it."""

    id: str
    time: str
    """When it was sent, in UTC, such as 2026-03-09T14:07:09.250Z."""
    mac_address: str
    """Of the interface that was meant; "" when it was not known."""
    before: Optional[Dict[str, str]]
    """What the device had, as in Outcome; None when it was not known."""
    after: Dict[str, str]
    """What it was to have."""
    verdict: Optional[Verdict]
    is_open: bool
    """Whether nobody knows what has come of it: the program that sent it ended before it could tell."""
    is_undone: bool
    undoes: str
    """The id of the change that this one has taken back; "" as a rule."""


class ChangeFailedError(Exception):
    """A change has ended with another verdict than that it is applied."""

    def __init__(self, outcome: Outcome) -> None:
        reason = f": {outcome.text} ({outcome.code})" if outcome.code else ""
        super().__init__(f"{outcome.mac_address or 'the device'} is not changed: {outcome.verdict.value}{reason}")
        self.outcome = outcome


class InventoryError(ValueError):
    """The library has refused options; the text names the member and what it may be."""


class IncompleteSearchError(Exception):
    """A search has ended before it was complete."""

    def __init__(self, devices: List[Device], report: Dict[str, Any]) -> None:
        super().__init__(f"{len(devices)} devices found, but the search has ended before it was complete")
        self.devices = devices
        """Those that were found."""
        self.report = report
        """How it went: Devices, Rounds, LostHere, EstimatedUnseen, Complete, Seconds."""


class _Wish(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int), ("address", ctypes.c_char_p), ("id", ctypes.c_longlong)]


_NO_WISH, _ASK_ALL, _ASK_MAC, _ASK_IP = range(4)
_RENAME, _RENAME_AT, _CONFIGURE = range(6, 9)
_OUT_OF_MEMORY = 27
_IO = 58
_TEXT = ctypes.POINTER(ctypes.c_char_p)
_FUNCTIONS: Functions = {
    "AdvanceTime": (ctypes.c_void_p, ctypes.c_longlong),
    "AnswerWish": (ctypes.c_void_p, ctypes.c_longlong, ctypes.c_longlong),
    "Create": (ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p)),
    "Feed": (ctypes.c_void_p, ctypes.c_int, ctypes.c_char_p, ctypes.c_longlong),
    "Free": (ctypes.c_void_p,),
    "GetLastError": (),
    "KeptChanges": (ctypes.c_void_p, ctypes.c_char_p, _TEXT),
    "NextEvent": (ctypes.c_void_p, _TEXT),
    "NextTime": (ctypes.c_void_p, ctypes.POINTER(ctypes.c_longlong)),
    "NextWish": (ctypes.c_void_p, ctypes.POINTER(_Wish)),
    "Snapshot": (ctypes.c_void_p, _TEXT),
    "StartChange": (
        ctypes.c_void_p,
        ctypes.c_char_p,
        ctypes.c_char_p,
        ctypes.c_longlong,
        ctypes.POINTER(ctypes.c_longlong),
    ),
    "StartSearch": (ctypes.c_void_p, ctypes.c_char_p, ctypes.c_longlong),
    "WishText": (ctypes.c_void_p, _TEXT, ctypes.POINTER(ctypes.c_longlong)),
}


@dataclass(frozen=True)
class _TakenWish:
    kind: int
    address: str
    id: int
    text: bytes


class _Library(NativeLibrary):
    """The functions that the inventory needs."""

    def __init__(self, path: Optional[Path]) -> None:
        functions = {f"DiscoveryInventory{name}": arguments for name, arguments in _FUNCTIONS.items()}
        super().__init__("DiscoveryInventory", path, INVENTORY_LIBRARY_VARIABLE, functions)
        self._last_error = self.functions["DiscoveryInventoryGetLastError"]
        self._last_error.restype = ctypes.c_char_p
        self.free = self.functions["DiscoveryInventoryFree"]
        self.free.restype = None

    def call(self, name: str, *arguments: Any) -> None:
        code = self.functions[f"DiscoveryInventory{name}"](*arguments)
        if code == _OUT_OF_MEMORY:
            raise MemoryError
        if code == _IO:
            raise OSError(self._last_error().decode("utf-8", "replace"))
        if code != 0:
            raise InventoryError(self._last_error().decode("utf-8", "replace"))


class Inventory:
    """The devices that a session hears of, from the constructor until close.

    A thread of its own feeds the library, asks devices, and collects changes. All methods may be called from any
    thread, but none in a handler of the session. As a context manager it is closed at the end, before the session is.
    """

    def __init__(
        self,
        session: Session,
        *,
        library: Optional[Path] = None,
        networks: Optional[Iterable[str]] = None,
        journal: Optional[Path] = None,
        **options: Any,
    ) -> None:
        """Begins to listen; with the usual options all devices are asked at once and again every ten seconds.

        library: the library's file. Without it the environment variable DISCOVERY_INVENTORY_LIBRARY names it, and
            without that it is the one that came with the module, or the system searches for it.
        networks: whose addresses a search may ask one by one when answers were lost, such as "192.168.1.10/24".
            Without it those of this machine, but for loopback and what bears a name that container engines,
            hypervisors and tunnels give.
        journal: a file that keeps each change before it is sent, and what has come of it, so that it can be taken back
            later; none or an empty text for no journal. Other programs, such as discovery-console, may keep the same
            one at the same time.
        options: of the library's session, such as AskEvery=5000 and AcceptedConflicts=["ip:10.0.0.5"].
        Raises LibraryError, OSError when the journal cannot be read, and InventoryError when an option is not possible.
        """
        self._session = session
        self._search_options = {} if networks is None else {"Networks": _list(networks)}
        self._library = _Library(library)
        self._start = (time.monotonic(), time.time())
        self._messages: queue.SimpleQueue[Optional[Tuple[EventKind, bytes]]] = queue.SimpleQueue()  # None wakes
        self._lock = threading.Condition()  # guards all that follows
        self._handle: Optional[ctypes.c_void_p] = ctypes.c_void_p()
        self._is_closing = False
        self._search: Optional[Dict[str, Any]] = None  # the report of the last search, once it has ended
        self._outcomes: Dict[int, Optional[Outcome]] = {}  # of changes that somebody waits for
        self._is_port_held = False
        self._receivers: List[Callable[[Optional[Change]], None]] = []
        if journal:
            options["Journal"] = os.fspath(journal)
        self._library.call("Create", json.dumps({"AskSystem": True, **options}).encode(), ctypes.byref(self._handle))
        try:
            for line in self._kept()["Broken"] if journal else ():
                _logger.warning("%s", line)
            self._thread = threading.Thread(target=self._run, name="discovery inventory", daemon=True)
            self._thread.start()
        except BaseException:
            self._library.free(self._handle)  # nobody can close what was not made
            raise
        session._add_listener(self._listen)

    def __enter__(self) -> Inventory:
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()

    def close(self) -> None:
        """Ends all iterators; does nothing when it is closed. Devices are not known any more."""
        self._session._remove_listener(self._listen)
        with self._lock:
            self._is_closing = True
        self._messages.put(None)
        self._thread.join()

    @property
    def devices(self) -> List[Device]:
        """All devices that are known, in the order in which they were first seen."""
        with self._lock:
            if self._handle is None:
                return []
            return [self._device(row) for row in self._read("Snapshot")["Devices"]]

    @property
    def journal(self) -> List[JournalEntry]:
        """The changes that the journal has, the oldest first. Raises OSError, and InventoryError without a journal."""
        return [_entry(each) for each in self._kept()["Entries"]]

    @property
    def is_port_held(self) -> bool:
        """Whether another program receives what devices send, too; then none is told to be gone.

        While this machine has lost all its networks (tunnels, point-to-point and container interfaces do not count),
        the inventory asks nobody by itself, and none is told to be gone either.
        """
        with self._lock:
            return self._is_port_held

    def discover(self, wait: float = 10, *, sweep: bool = True, also: Iterable[str] = ()) -> List[Device]:
        """Searches until all devices are found, and returns those that are here. A search that runs gives way.

        wait: seconds after which it ends at the latest.
        sweep: whether the addresses of the networks may be asked one by one when answers were lost.
        also: addresses elsewhere to ask one by one, such as "10.2.0.5" and "10.2.1.0/26".
        Raises IncompleteSearchError with what was found, and InventoryError when an argument is not possible.
        """
        options = {"Wait": round(wait * 1000), "Sweep": sweep, "Also": _list(also), **self._search_options}
        with self._lock:
            if self._handle is None:
                raise InventoryError("the inventory is closed")
            self._library.call("StartSearch", self._handle, json.dumps(options).encode("ascii"), self._now())
            self._tell()  # of a search, too, that has ended to make way
            self._search = None
            self._messages.put(None)
            while self._search is None and self._handle is not None:
                self._lock.wait(1)  # on Windows Ctrl-C takes effect between waits only
            report = self._search or {"Complete": False}
        devices = [device for device in self.devices if device.is_here]
        if not report["Complete"]:
            raise IncompleteSearchError(devices, report)
        return devices

    async def discover_async(
        self, wait: float = 10, *, sweep: bool = True, also: Iterable[str] = ()
    ) -> AsyncIterator[Device]:
        """The same for async for, while the loop goes on; the devices come once all are found."""
        search = functools.partial(self.discover, wait, sweep=sweep, also=also)
        for device in await asyncio.get_running_loop().run_in_executor(None, search):
            yield device

    def rename(
        self,
        host_name: str,
        *,
        mac_address: Optional[str] = None,
        ip_address: Optional[str] = None,
        look: bool = True,
        timeout: float = 3,
        reboot_timeout: Optional[float] = None,
        force: bool = False,
    ) -> Outcome:
        """Gives a device a new host name, and returns when it has it.

        mac_address: of the device, which a broadcast reaches whatever its IP address is.
        ip_address: instead, of a device that broadcasts do not reach.
        look: whether to search first, for three seconds at most, for devices that have the name.
        timeout: seconds until the device is to have it.
        reboot_timeout: the same for a device that takes it when it starts anew. Without it a minute for one that falls
            silent, and timeout for one that goes on as before.
        force: goes on when the device is unknown or another one has the name.
        Raises ChangeFailedError, whose outcome says what is the matter, and InventoryError when an argument is not
        possible.
        """
        if (mac_address is None) == (ip_address is None):
            raise InventoryError("either mac_address or ip_address names the device")
        request = {"HostName": host_name}
        if mac_address is not None:
            request["MACAddress"] = mac_address
        elif ip_address is not None:
            request["IPAddress"] = ip_address
        return self._change(request, _change_options(look, timeout, reboot_timeout, force))

    def configure(
        self,
        settings: NicSettings,
        *,
        look: bool = True,
        timeout: float = 3,
        reboot_timeout: Optional[float] = None,
        force: bool = False,
    ) -> Outcome:
        """Gives the interface with the MAC address of the settings the others, and returns when it has them.

        The keyword arguments, and what it raises, are those of rename.
        """
        return self._change(dict(settings), _change_options(look, timeout, reboot_timeout, force))

    def undo(
        self,
        outcome: Optional[Outcome] = None,
        *,
        mac_address: Optional[str] = None,
        timeout: float = 3,
        reboot_timeout: Optional[float] = None,
    ) -> Outcome:
        """Gives a device back what it had before a change, whatever has come of that one.

        outcome: of the change. Without it, it is the newest one of the journal that is not taken back.
        mac_address: then of the interface whose newest change is meant. An exchange of names or addresses takes
            a call for each of its changes, the newest first.
        The other arguments are those of rename. Raises ChangeFailedError likewise, InventoryError when it is not known
        what the device had or there is no such change, and OSError when the journal cannot be read.
        """
        if outcome is not None:
            request, entry = outcome._undo, outcome._entry
        else:
            newest = self._kept(mac_address or "")["Newest"]
            if newest is None:
                raise InventoryError("the journal has no change to undo")
            request, entry = newest["Request"], newest["Entry"]["Id"]
        if request is None:
            raise InventoryError("it is not known what the device had before the change")
        options = _change_options(False, timeout, reboot_timeout, False)
        return self._change(request, {**options, "GivesBack": True, "Undoes": entry})

    def changes(self, timeout: Optional[float] = None) -> Iterator[Change]:
        """Yields what happens from now on.

        Ends when the inventory is closed, or when nothing has happened for timeout seconds; None waits without limit.
        """
        arrived: queue.SimpleQueue[Optional[Change]] = queue.SimpleQueue()
        self._subscribe(arrived.put)
        return self._iterate(arrived, timeout)

    async def __aiter__(self) -> AsyncIterator[Change]:
        """The same for async for, without limit."""
        loop = asyncio.get_running_loop()
        arrived: asyncio.Queue[Optional[Change]] = asyncio.Queue()

        def receive(change: Optional[Change]) -> None:
            with contextlib.suppress(RuntimeError):  # the loop is closed, and nobody waits any more
                loop.call_soon_threadsafe(arrived.put_nowait, change)

        self._subscribe(receive)
        try:
            while (change := await arrived.get()) is not None:
                yield change
        finally:
            self._unsubscribe(receive)

    def _change(self, request: Mapping[str, Any], options: Dict[str, Any]) -> Outcome:
        change = ctypes.c_longlong()
        with self._lock:
            if self._handle is None:
                raise InventoryError("the inventory is closed")
            texts = (json.dumps(each).encode() for each in (request, options))
            self._library.call("StartChange", self._handle, *texts, self._now(), ctypes.byref(change))
            self._outcomes[change.value] = None
            self._messages.put(None)
            while self._outcomes[change.value] is None and self._handle is not None:
                self._lock.wait(1)  # on Windows Ctrl-C takes effect between waits only
            outcome = self._outcomes.pop(change.value)
        if outcome is None:
            raise InventoryError("the inventory was closed before the change has ended")
        if outcome.verdict != Verdict.APPLIED:
            raise ChangeFailedError(outcome)
        return outcome

    def _iterate(self, arrived: queue.SimpleQueue[Optional[Change]], timeout: Optional[float]) -> Iterator[Change]:
        try:
            while True:
                try:
                    change = arrived.get(timeout=1.0 if timeout is None else timeout)
                except queue.Empty:
                    if timeout is None:
                        continue
                    return
                if change is None:
                    return
                yield change
        finally:
            self._unsubscribe(arrived.put)

    def _subscribe(self, receiver: Callable[[Optional[Change]], None]) -> None:
        with self._lock:
            if self._handle is None:
                receiver(None)
            else:
                self._receivers.append(receiver)

    def _unsubscribe(self, receiver: Callable[[Optional[Change]], None]) -> None:
        with self._lock:
            if receiver in self._receivers:
                self._receivers.remove(receiver)

    def _listen(self, kind: EventKind, document: bytes) -> None:
        self._messages.put((kind, document))

    def _run(self) -> None:
        """Until close: the messages of a moment at once, then the time, wishes and events."""
        wait = 0.0
        try:
            while not self._is_closing:
                try:
                    wait = self._work(self._take_messages(wait))
                except Exception:  # such as one for want of memory
                    _logger.exception("the inventory goes on after a failure")
                    wait = _LONGEST_WAIT
        finally:
            with self._lock:  # whoever waits has waited long enough
                self._library.free(self._handle)
                self._handle = None
                for receiver in self._receivers:
                    receiver(None)
                self._lock.notify_all()

    def _work(self, messages: List[Tuple[EventKind, bytes]]) -> float:
        """Returns for how many seconds nothing is to be done. Requests wait for no lock of ours."""
        with self._lock:
            for kind, document in messages:
                self._feed(kind, document)
            self._library.call("AdvanceTime", self._handle, self._now())
            wishes = list(self._take_wishes())
            self._tell()
            wait = self._time_to_wait()
        for wish in wishes:
            is_taken = self._carry_out(wish)
            if wish.kind in (_RENAME, _RENAME_AT, _CONFIGURE):
                wait = 0.0  # the change goes on at once
                with self._lock:
                    self._library.call("AnswerWish", self._handle, wish.id, int(is_taken))
        return wait

    def _take_messages(self, wait: float) -> List[Tuple[EventKind, bytes]]:
        """Waits for one and then for those that come with it."""
        messages = []
        try:
            messages.append(self._messages.get(timeout=wait))
            time.sleep(_BATCH_TIME)
            while True:
                messages.append(self._messages.get_nowait())
        except queue.Empty:
            return [message for message in messages if message is not None]

    def _time_to_wait(self) -> float:
        following = ctypes.c_longlong()
        self._library.call("NextTime", self._handle, ctypes.byref(following))
        return min(max((following.value - self._now()) / 1000, 0.001), _LONGEST_WAIT)

    def _feed(self, kind: EventKind, document: bytes) -> None:
        try:
            self._library.call("Feed", self._handle, _MESSAGES[kind], document, self._now())
        except InventoryError as error:
            _logger.warning("unreadable message left out: %s", error)

    def _take_wishes(self) -> Iterator[_TakenWish]:
        wish = _Wish()
        text = ctypes.c_char_p()
        while True:
            self._library.call("NextWish", self._handle, ctypes.byref(wish))
            if wish.kind == _NO_WISH:
                return
            self._library.call("WishText", self._handle, ctypes.byref(text), None)
            yield _TakenWish(wish.kind, wish.address.decode("ascii", "replace"), wish.id, text.value or b"")

    def _carry_out(self, wish: _TakenWish) -> bool:
        """Whether the library has taken the request."""
        try:
            if wish.kind == _ASK_ALL:
                self._session.discover()
            elif wish.kind == _ASK_MAC:
                self._session.refresh_client(wish.address)
            elif wish.kind == _ASK_IP:
                self._session.reach_client(wish.address)
            elif wish.kind == _RENAME:
                self._session.change_clients_host_name(wish.text.decode(), wish.address)
            elif wish.kind == _RENAME_AT:
                self._session.change_clients_host_name_with_ip(wish.text.decode(), wish.address)
            elif wish.kind == _CONFIGURE:
                self._session.change_clients_ip_configurations(json.loads(wish.text))
            else:
                return False
        except (DiscoveryError, ValueError) as error:  # the server is stopped, for instance: nobody answers
            _logger.debug("not sent: %s", error)
            return False
        return True

    def _tell(self) -> None:
        kinds = {kind.value: kind for kind in ChangeKind}
        while (event := self._read("NextEvent")) is not None:
            if event["Event"] == "SearchEnded":
                self._search = event["Search"]
                self._lock.notify_all()
            elif event["Event"] == "ChangeEnded" and event["Id"] in self._outcomes:
                self._outcomes[event["Id"]] = _outcome(event)
                self._lock.notify_all()
            elif event["Event"] in ("PortHeld", "PortReleased"):
                self._is_port_held = event["Event"] == "PortHeld"
            kind = kinds.get(event["Event"].lower())
            if kind is not None:
                change = Change(event["Device"], kind, _differences(event), _conflict(event))
                for receiver in self._receivers:
                    receiver(change)

    def _kept(self, mac_address: str = "") -> Dict[str, Any]:
        with self._lock:
            if self._handle is None:
                raise InventoryError("the inventory is closed")
            kept: Optional[Dict[str, Any]] = self._read("KeptChanges", mac_address.encode())
        if kept is None:
            raise InventoryError("the inventory keeps no journal")
        return kept

    def _read(self, function: str, *arguments: Any) -> Any:
        text = ctypes.c_char_p()
        self._library.call(function, self._handle, *arguments, ctypes.byref(text))
        return None if text.value is None else json.loads(text.value.decode("utf-8", "replace"))

    def _device(self, row: Dict[str, Any]) -> Device:
        first, last = (self._start[1] + row[key] / 1000 for key in ("FirstSeen", "LastSeen"))
        return Device(row["Device"], DeviceState(row["State"]), row["Here"], first, last)

    def _now(self) -> int:
        return int((time.monotonic() - self._start[0]) * 1000)


def _change_options(look: bool, timeout: float, reboot_timeout: Optional[float], force: bool) -> Dict[str, Any]:
    options: Dict[str, Any] = {"Look": look, "Timeout": round(timeout * 1000), "Force": force}
    if reboot_timeout is not None:
        options["RebootTimeout"] = round(reboot_timeout * 1000)
    return options


def _outcome(event: Dict[str, Any]) -> Outcome:
    change = event["Change"]
    return Outcome(
        Verdict(change["Verdict"]),
        change.get("MACAddress", ""),
        change.get("Seconds", 0.0),
        change.get("Before"),
        change.get("After"),
        change.get("Code", ""),
        change.get("Text", ""),
        event.get("Undo"),
        event.get("Entry", ""),
    )


def _entry(entry: Dict[str, Any]) -> JournalEntry:
    verdicts = {verdict.value: verdict for verdict in Verdict}
    return JournalEntry(
        entry["Id"],
        entry["Time"],
        entry["MACAddress"],
        entry.get("Before"),
        entry["After"],
        verdicts.get(entry.get("Verdict", "")),
        entry["State"] == "open",
        entry["State"] == "undone",
        entry.get("Undoes", ""),
    )


def _differences(event: Dict[str, Any]) -> List[Difference]:
    return [Difference(each["Property"], each.get("Before"), each.get("After")) for each in event.get("Changes", ())]


def _conflict(event: Dict[str, Any]) -> Optional[Conflict]:
    each = event.get("Conflict")
    if each is None:
        return None
    return Conflict(each["Kind"], each["Value"], each["Count"], each["First"], each["Second"])
