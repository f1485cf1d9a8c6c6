"""The Orvelan OFX components for Python, over liborvelan's C interface.

    import orvelan

    with orvelan.BankStatement(fi_url="https://bank.example/ofx", ofx_user="me",
                               ofx_password="secret", bank_id="123456789",
                               account_id="1001", ofx_version="211") as statement:
        statement.on_error = lambda event: print("warning:", event.description)
        statement.get_statement()
        for tx in statement.transactions:
            print(tx.date_posted, tx.amount, tx.payee_name)

Each component is a class whose properties are those of the library's
tables in snake_case. An indexed list (TxCount with TxAmount, TxMemo, ...)
is one sequence attribute whose items are immutable records. A failed
operation raises Error. Events call the callable set as `on_<event>` with
one immutable record. The library is liborvelan.so.3, or the file that the
environment variable ORVELAN_LIBRARY names.

A component is not thread-safe; use each from one thread at a time.
"""
from __future__ import annotations

import ctypes
import ctypes.util
import inspect
import keyword
import os
import re
import weakref
from collections.abc import Sequence
from typing import Any, Callable, NamedTuple, Optional, Union

from . import _tables

__all__ = ["Error", "Component", "Records", "ConnectionStatusEvent", "ErrorEvent",
           "SSLServerAuthenticationEvent", "SSLStatusEvent"] + list(_tables.COMPONENTS)

Value = Union[str, int, bool, bytes]


class Error(Exception):
    """A failed operation, with the library's error code and text."""

    def __init__(self, code: int, text: str) -> None:
        super().__init__(code, text)
        self.code = code
        self.text = text

    def __str__(self) -> str:
        return "[%d] %s" % (self.code, self.text)


class ConnectionStatusEvent(NamedTuple):
    connection_event: str
    status_code: int
    description: str


class ErrorEvent(NamedTuple):
    code: int
    description: str


class SSLServerAuthenticationEvent(NamedTuple):
    """The handler's result decides: true accepts the certificate, false
    rejects it, None leaves the library's own verdict (`accept`)."""
    cert_encoded: bytes
    cert_subject: str
    cert_issuer: str
    status: str
    accept: bool


class SSLStatusEvent(NamedTuple):
    message: str


_PYTHON_TYPES = {"text": str, "int": int, "bool": bool, "int64": int, "bytes": bytes}

# What each method takes, and the kind its last parameter slot hands back.
# A method missing here takes nothing and hands nothing back.
_SIGNATURES: dict[str, tuple[tuple[str, ...], Optional[str]]] = {
    "Config": (("setting",), "text"),
    "GetImage": (("image_ref", "image_ref_type"), "bytes"),
    "PathExists": (("path",), "bool"),
    "ReadOFXDataFile": (("file_name",), None),
    "WriteOFXDataFile": (("file_name",), None),
    "CancelTransfer": (("transfer_id",), None),
    "ModifyTransfer": (("transfer_id",), None),
    "SynchronizeTransfers": (("token",), "text"),
    "CancelPayment": (("payment_id",), None),
    "ModifyPayment": (("payment_id",), None),
    "GetPaymentStatus": (("payment_id",), None),
    "DeletePayee": (("payee_list_id",), None),
    "ModifyPayee": (("payee_list_id",), None),
    "SynchronizePayees": (("token",), "text"),
    "SynchronizePayments": (("token",), "text"),
}

# Sequence names where adding "s" to the list's prefix reads wrong.
_LIST_NAMES = {"Tx": "transactions", "Acc": "accounts", "Bal": "balances", "OO": "open_orders",
               "Pos": "positions", "Sec": "securities", "Child": "children", "ClosingInfo": "closing_info"}

_CALLBACK = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_int, ctypes.c_int,
                             ctypes.POINTER(ctypes.c_void_p), ctypes.POINTER(ctypes.c_int))


def _snake(name: str) -> str:
    name = name.replace("UId", "Uid")
    name = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name)
    name = re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name).lower()
    return name + "_" if keyword.iskeyword(name) else name


def _load_library() -> ctypes.CDLL:
    path = os.environ.get("ORVELAN_LIBRARY") or ctypes.util.find_library("orvelan") or "liborvelan.so.3"
    return ctypes.CDLL(path)


_library = _load_library()


class _Api:
    """The exported functions of one component, typed."""

    def __init__(self, prefix: str) -> None:
        def bind(name: str, restype: Any, *argtypes: Any) -> Any:
            function = getattr(_library, prefix + "_" + name)
            function.restype, function.argtypes = restype, argtypes
            return function
        vp, i = ctypes.c_void_p, ctypes.c_int
        self.create = bind("Create", vp, _CALLBACK, vp, ctypes.c_char_p)
        self.destroy = bind("Destroy", i, vp)
        self.get = bind("Get", vp, vp, i, i, ctypes.POINTER(i))
        self.set = bind("Set", i, vp, i, i, vp, i)
        self.last_error = bind("GetLastError", ctypes.c_char_p, vp)
        self.last_error_code = bind("GetLastErrorCode", i, vp)
        self.do = bind("Do", i, vp, i, i, ctypes.POINTER(vp), ctypes.POINTER(i))


def _decode(raw: bytes) -> str:
    # OFX 1.x files are often in a Windows code page rather than UTF-8.
    try:
        return raw.decode("utf-8")
    except UnicodeDecodeError:
        return raw.decode("latin-1")


def _text(pointer: Optional[int]) -> str:
    return _decode(ctypes.string_at(pointer)) if pointer else ""


def _integer(slot: Optional[int]) -> int:
    # Integers cross in a pointer-sized slot, sign-extended.
    value = slot or 0
    return value - (1 << 64) if value >= 1 << 63 else value


def _slot(value: Value, keep: list) -> tuple[Optional[int], int]:
    """A Python value as a parameter slot and its length; `keep` holds the
    bytes the slot points into until the call returns."""
    if isinstance(value, (bool, int)):
        return int(value) & ((1 << 64) - 1), 0
    data = value.encode("utf-8") if isinstance(value, str) else bytes(value)
    keep.append(ctypes.create_string_buffer(data, len(data) + 1))
    return ctypes.addressof(keep[-1]), len(data)


class Component:
    """What every component class shares: its handle, errors and events."""

    _api: _Api
    _events: dict[int, tuple[str, Callable[..., Any]]] = {}

    def __init__(self, **properties: Value) -> None:
        self._handle: Optional[int] = None
        self._pending: Optional[BaseException] = None
        this = weakref.ref(self)

        # Holds no strong reference, so a dropped component is still
        # collected and destroyed.
        def trampoline(_user: Any, event: int, count: int, params: Any, lengths: Any) -> int:
            component = this()
            return 0 if component is None else component._event(event, count, params, lengths)
        self._callback = _CALLBACK(trampoline)
        self._handle = self._api.create(self._callback, None, None)
        if not self._handle:
            raise MemoryError("the component could not be created")
        # Files as banks send them open by default; config("LenientReading=False") restores the strict rules.
        if type(self).__name__ != "OFXAggregate": self.config("LenientReading=True")
        for name, value in properties.items():
            setattr(self, name, value)

    def __setattr__(self, name: str, value: Any) -> None:
        # A misspelt handler or property would otherwise be a silent no-op.
        if not name.startswith("_") and not hasattr(type(self), name):
            raise AttributeError("%s has no attribute %r" % (type(self).__name__, name))
        super().__setattr__(name, value)

    def close(self) -> None:
        """Destroys the component; later use raises ValueError."""
        if self._handle:
            self._api.destroy(self._handle)
            self._handle = None

    def __enter__(self) -> "Component":
        return self

    def __exit__(self, *exc: Any) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_handle", None):
            self.close()

    def _live(self) -> int:
        if not self._handle:
            raise ValueError("the %s component is closed" % type(self).__name__)
        return self._handle

    def _fail(self, code: int) -> Error:
        return Error(code, _decode(self._api.last_error(self._handle) or b""))

    def _get(self, pid: int, kind: str, index: int = 0) -> Value:
        length = ctypes.c_int(0)
        result = self._api.get(self._live(), pid, index, ctypes.byref(length))
        self._raise_pending()
        if kind == "bytes":
            if not result:
                if length.value:
                    raise self._fail(length.value)
                return b""
            return ctypes.string_at(result, length.value)
        code = self._api.last_error_code(self._handle)
        if code:
            raise self._fail(code)
        if kind == "text":
            return _text(result)
        return bool(result) if kind == "bool" else _integer(result)

    def _set(self, pid: int, value: Value, index: int = 0) -> None:
        keep: list = []
        slot, length = _slot(value, keep)
        code = self._api.set(self._live(), pid, index, slot, length)
        self._raise_pending()
        if code:
            raise self._fail(code)

    def _do(self, mid: int, args: tuple, result: Optional[str]) -> Any:
        keep: list = []
        count = len(args) + (1 if result else 0)
        params = (ctypes.c_void_p * max(count, 1))()
        lengths = (ctypes.c_int * max(count, 1))()
        for i, arg in enumerate(args):
            params[i], lengths[i] = _slot(arg, keep)
        code = self._api.do(self._live(), mid, count, params, lengths)
        self._raise_pending()
        if code:
            raise self._fail(code)
        if result is None:
            return None
        out = params[count - 1]
        if result == "bytes":
            return ctypes.string_at(out, lengths[count - 1]) if out else b""
        return _text(out) if result == "text" else bool(out)

    def _raise_pending(self) -> None:
        # An exception in a handler cannot cross the C callback; it is raised
        # here once the call that fired the event returns.
        pending, self._pending = self._pending, None
        if pending is not None:
            raise pending

    def _event(self, event: int, count: int, params: Any, lengths: Any) -> int:
        known = self._events.get(event)
        handler = getattr(self, known[0], None) if known else None
        if handler is None:
            return 0
        try:
            known[1](handler, count, params, lengths)
        except BaseException as e:
            if self._pending is None:
                self._pending = e
        return 0


def _on_ssl_server_authentication(handler: Callable, count: int, params: Any, lengths: Any) -> None:
    verdict = handler(SSLServerAuthenticationEvent(
        ctypes.string_at(params[0], lengths[0]) if params[0] else b"", _text(params[1]), _text(params[2]),
        _text(params[3]), bool(params[4])))
    if verdict is not None:
        params[4] = 1 if verdict else 0


_COMMON_EVENTS = {
    1: ("on_connection_status", lambda handler, count, params, lengths: handler(
        ConnectionStatusEvent(_text(params[0]), _integer(params[1]), _text(params[2])))),
    2: ("on_error", lambda handler, count, params, lengths: handler(
        ErrorEvent(_integer(params[0]), _text(params[1])))),
    3: ("on_ssl_server_authentication", _on_ssl_server_authentication),
    4: ("on_ssl_status", lambda handler, count, params, lengths: handler(SSLStatusEvent(_text(params[0])))),
}


class Records(Sequence):
    """A live view of one indexed list of a component. Each item is an
    immutable record read when it is indexed; the length is the list's
    count property."""

    def __init__(self, owner: Component, count_id: int, record: type, fields: list) -> None:
        self._owner, self._count_id, self._record, self._fields = owner, count_id, record, fields

    def __len__(self) -> int:
        return int(self._owner._get(self._count_id, "int"))

    def __getitem__(self, index: Union[int, slice]) -> Any:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        size = len(self)
        if index < 0:
            index += size
        if not 0 <= index < size:
            raise IndexError("%s index out of range" % self._record.__name__)
        return self._record(*(self._owner._get(pid, kind, index) for _, pid, kind, _ in self._fields))

    def set(self, index: int, **fields: Value) -> None:
        """Writes the writable fields of item `index` (for example an MFA
        answer); a bad index raises Error with the library's text."""
        by_name = {name: (pid, writable) for name, pid, _, writable in self._fields}
        for name, value in fields.items():
            if not by_name.get(name, (0, False))[1]:
                raise AttributeError("%s field %r is not writable" % (self._record.__name__, name))
            self._owner._set(by_name[name][0], value, index)


def _property(pid: int, name: str, kind: str, writable: bool) -> property:
    def read(self: Component) -> Any:
        return self._get(pid, kind)

    def write(self: Component, value: Value) -> None:
        self._set(pid, value)
    read.__annotations__ = {"return": _PYTHON_TYPES[kind]}
    write.__annotations__ = {"value": _PYTHON_TYPES[kind], "return": None}
    return property(read, write if writable else None, doc="%s (%s%s)" % (name, kind, "" if writable else ", read-only"))


def _list_property(count_id: int, record: type, fields: list) -> property:
    def read(self: Component) -> Records:
        return Records(self, count_id, record, fields)
    read.__annotations__ = {"return": Records}
    return property(read, doc="the %s records" % record.__name__)


def _method(mid: int, name: str) -> Callable:
    params, result = _SIGNATURES.get(name, ((), None))

    def call(self: Component, *args: Value) -> Any:
        if len(args) != len(params):
            raise TypeError("%s() takes %d argument(s)" % (_snake(name), len(params)))
        return self._do(mid, args, result)
    call.__name__ = call.__qualname__ = _snake(name)
    call.__doc__ = "The %s method." % name
    returns = _PYTHON_TYPES[result] if result else None
    call.__signature__ = inspect.Signature(  # type: ignore[attr-defined]
        [inspect.Parameter("self", inspect.Parameter.POSITIONAL_ONLY)] +
        [inspect.Parameter(p, inspect.Parameter.POSITIONAL_OR_KEYWORD, annotation=str) for p in params],
        return_annotation=returns)
    call.__annotations__ = dict({p: str for p in params}, **{"return": returns})
    return call


def _event_name(upper: str, names: list) -> str:
    """SYNCPAYEES as sync_payees: the header spells events in capitals, so
    the words are found among the component's own property and method names."""
    words = sorted({w for n in names for w in re.findall(r"[A-Z][a-z]+", n)}, key=len, reverse=True)
    out, rest = [], upper
    while rest:
        word = next((w for w in words if rest.startswith(w.upper())), None)
        if word is None:
            return upper.lower()
        out.append(word.lower())
        rest = rest[len(word):]
    return "_".join(out)


def _text_event(record: type) -> Callable:
    return lambda handler, count, params, lengths: handler(
        record(*(_text(params[i]) if i < count else "" for i in range(len(record._fields)))))


def _make_class(component: str, table: dict) -> type:
    properties = table["properties"]
    names = [p[1] for p in properties] + [m[1] for m in table["methods"]]
    counts = {name[:-len("Count")]: pid for pid, name, kind, _, indexed in properties
              if name.endswith("Count") and kind == "int" and not indexed}
    members: dict[str, Any] = {"_api": _Api(component), "__doc__": "The %s component." % component}
    annotations: dict[str, Any] = {}
    lists: dict[str, list] = {}
    plain = []
    for pid, name, kind, writable, indexed in properties:
        # An indexed property belongs to the longest list prefix it begins with.
        prefix = max((c for c in counts if indexed and name.startswith(c) and name != c), key=len, default=None)
        if prefix is not None:
            lists.setdefault(prefix, []).append((_snake(name[len(prefix):]), pid, kind, writable))
        elif not indexed:
            plain.append((pid, name, kind, writable))
    for pid, name, kind, writable in plain:
        # A list's count is its length, unless the host may write it.
        if name[:-len("Count")] not in lists or not name.endswith("Count") or writable:
            members[_snake(name)] = _property(pid, name, kind, writable)
            annotations[_snake(name)] = _PYTHON_TYPES[kind]
    for prefix, fields in lists.items():
        record = NamedTuple(component + prefix, [(f[0], _PYTHON_TYPES[f[2]]) for f in fields])
        attribute = _LIST_NAMES.get(prefix) or _snake(prefix) + "s"
        members[attribute] = _list_property(counts[prefix], record, fields)
        annotations[attribute] = Records
    for mid, name in table["methods"]:
        members[_snake(name)] = _method(mid, name)
    events = dict(_COMMON_EVENTS)
    for eid, upper, params in table["events"]:
        name = _event_name(upper, names)
        record = NamedTuple("".join(w.title() for w in name.split("_")) + "Event",
                            [(_snake(p), str) for p in params])
        events[eid] = ("on_" + name, _text_event(record))
    for attribute, _ in events.values():
        members[attribute] = None
        annotations[attribute] = Optional[Callable[[Any], Any]]
    members["_events"] = events
    members["__annotations__"] = annotations
    return type(component, (Component,), members)


for _component, _table in _tables.COMPONENTS.items():
    globals()[_component] = _make_class(_component, _table)
