"""Shows strings, variants, parameter trees and counted pointers in gdb as what they hold.

In a session: `source qzrcore_printers.py`. They read the library's debug information, so they need the DLL as it was
built, not a stripped one. `print /r` shows the plain members.
"""
import gdb
import gdb.printing

MOST_BLOB_BYTES = 16


def text_of(pointer):
    """A text as gdb writes it, in quotes, cut at `set print elements`."""
    if int(pointer) == 0:
        return "null"
    return pointer.format_string(address=False, symbols=False)


def blob_text(blob):
    size, data = int(blob["cbSize"]), blob["pBlobData"]
    if int(data) == 0:
        return f"{size} bytes that are not there" if size else "no bytes"
    shown = min(size, MOST_BLOB_BYTES)
    try:
        found = gdb.selected_inferior().read_memory(int(data), shown).tobytes() if shown else b""
    except gdb.MemoryError:
        return f"{size} bytes at {int(data):#x}, which cannot be read"
    return f"{size} bytes: {found.hex(' ')}{' ...' if shown < size else ''}"


def whole_object(pointer):
    """What an interface pointer points at, as the type that the object was made with."""
    return pointer.cast(pointer.dynamic_type).dereference()


def object_text(pointer):
    """The type of an object, where it is, and how many references it has where it counts in the usual way."""
    if int(pointer) == 0:
        return "null"
    try:
        target = whole_object(pointer)
    except gdb.error:  # nothing that was made by a class
        return f"{int(pointer):#x}, which is no object"
    text = f"{target.type.unqualified()} at {int(pointer):#x}"
    for name in ("m_cRef", "references_"):
        try:
            return f"{text}, {count_text(int(target[name]), 'reference')}"
        except gdb.error:  # no such member
            continue
    return text


def count_text(count, noun, plural=None):
    return f"{count} {noun if count == 1 else plural or noun + 's'}"


# --- strings ----------------------------------------------------------------------------------------------------

class StringPrinter:
    """CXString and CXStringW."""

    def __init__(self, value):
        self.text = value["m_pszData"]

    def to_string(self):
        return text_of(self.text)


# --- variants ---------------------------------------------------------------------------------------------------

def plain(member):
    return lambda value: value[member].format_string(symbols=False)


def text(member):
    return lambda value: text_of(value[member])


# In the order of the type codes: the name and how the value is shown.
VARIANT_TYPES = [
    ("QZVT_EMPTY", None),
    ("QZVT_BOOL", plain("boolVal")),
    ("QZVT_UCHAR", lambda value: str(int(value["ucharVal"]))),
    ("QZVT_USHORT", plain("ushortVal")),
    ("QZVT_ULONG", plain("ulongVal")),
    ("QZVT_INT", plain("intVal")),
    ("QZVT_UINT", plain("uintVal")),
    ("QZVT_LONG", plain("longVal")),
    ("QZVT_DOUBLE", plain("doubleVal")),
    ("QZVT_FLOAT", plain("floatVal")),
    ("QZVT_TEXT", text("pszVal")),
    ("QZVT_SIZE", plain("sizeVal")),
    ("QZVT_RSIZE", plain("rsizeVal")),
    ("QZVT_POINT", plain("pointVal")),
    ("QZVT_RPOINT", plain("rpointVal")),
    ("QZVT_RECT", plain("rectVal")),
    ("QZVT_RRECT", plain("rrectVal")),
    ("QZVT_BLOB", lambda value: blob_text(value["blobVal"])),
    ("QZVT_OBJECT", lambda value: object_text(value["pUnkVal"])),
    ("QZVT_WTEXT", text("pwszVal")),
]


TEXT = [name for name, _ in VARIANT_TYPES].index("QZVT_TEXT")


class VariantPrinter:
    """tagQZVARIANT and CQZVariant."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        code = int(self.value["vt"])
        if code >= len(VARIANT_TYPES):
            return f"invalid type code {code}"
        name, show = VARIANT_TYPES[code]
        return f"{name} {show(self.value)}" if show else name


class BlobPrinter:
    """tagQZBLOB and QZBlob."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return blob_text(self.value)


# --- trees ------------------------------------------------------------------------------------------------------

def names_of(node, member):
    """One of a node's two lists of names, or None: they are made on demand."""
    names = node[member]["m_p"]
    return names.dereference() if int(names) else None


def listed(names):
    """(name, value, whether it is found) of what a list of names holds, in its order."""
    if names is None:
        return
    slots = names["slots_"]
    size, segment_size = int(slots["size_"]), int(slots["kSegment"])
    segmented = int(slots["capacity_"]) > segment_size
    for first in range(0, size, segment_size):
        segment = slots["segments_"]["_M_impl"]["_M_start"][first // segment_size] if segmented else slots["first_"]
        count = min(segment_size, size - first)
        entries = segment.cast(segment.type.target().array(count - 1).pointer()).dereference()
        entries.fetch_lazy()  # at once: each reading from another machine takes its time
        for entry in (entries[at] for at in range(count)):
            state = str(entry["state"]).rpartition("::")[2]
            if state != "kHole":
                yield entry["name"].string(errors="replace"), entry["value"], state == "kFound"


def record_of(packed):
    """The variant record that a packed value stands for."""
    record = gdb.lookup_type("tagQZVARIANT")
    code, room = int(packed["code"]), packed["bytes"]
    if code == int(packed["kRecord"]):
        return room.address.cast(record.pointer().pointer()).dereference().dereference()
    if code == int(packed["kShortText"]):
        code, payload = TEXT, int(room.address).to_bytes(8, "little")
    else:
        payload = bytes(int(room[at]) & 0xFF for at in range(int(packed["kRoom"])))
    return gdb.Value((code.to_bytes(8, "little") + payload).ljust(record.sizeof, b"\0"), record)


def child_of(packed):
    """The child node that a packed value of a list of children points at."""
    node = gdb.lookup_type("qzr::CMemParam").pointer()
    return packed["bytes"].address.cast(node.pointer()).dereference().dereference()


class MemoryTreePrinter:
    """A node of a tree in memory: its values, and its children down to `set print max-depth`."""

    def __init__(self, node):
        self.values, self.nodes = names_of(node, "values_"), names_of(node, "children_")

    def to_string(self):
        values, nodes = (int(names["slots_"]["size_"]) - int(names["holes_"]) if names is not None else 0
                         for names in (self.values, self.nodes))
        return f"tree node, {count_text(values, 'value')}, {count_text(nodes, 'child', 'children')}"

    def children(self):
        for name, packed, found in listed(self.values):
            yield name, record_of(packed) if found else "listed, but not found"
        for name, packed, found in listed(self.nodes):
            yield name + "\\", child_of(packed) if found else "listed, but not found"


class OtherNodePrinter:
    """A node whose values lie elsewhere: in a file, the registry or a storage. Shows its own members."""

    def __init__(self, node):
        self.node = node

    def to_string(self):
        return str(self.node.type.unqualified())

    def children(self):
        for field in self.node.type.fields():
            if not field.is_base_class and hasattr(field, "bitpos"):
                yield field.name, self.node[field]


def node_printer(value):
    """The printer for a node known as an IParam, or as what it is."""
    node = whole_object(value.address)
    kind = node.type.unqualified().name
    if kind == "qzr::CMemParam":
        return MemoryTreePrinter(node)
    return OtherNodePrinter(node) if kind != "IParam" else None


# --- counted pointers -------------------------------------------------------------------------------------------

class RefPrinter:
    """CQZRef; one that holds a node of a tree shows the tree."""

    def __init__(self, value):
        self.pointer = value["m_p"]
        self.node = None
        interface = self.pointer.type.target().unqualified().name
        if int(self.pointer) != 0 and interface == "IParam":
            self.node = self.pointer.dereference()

    def to_string(self):
        return object_text(self.pointer)

    def children(self):
        if self.node is not None:
            yield "*", self.node


# --- which printer for which type -------------------------------------------------------------------------------

class Printers(gdb.printing.PrettyPrinter):
    """Finds the printer of a value, also for references and const values."""

    BY_NAME = {
        "CXString": StringPrinter,
        "CXStringW": StringPrinter,
        "tagQZVARIANT": VariantPrinter,
        "CQZVariant": VariantPrinter,
        "tagQZBLOB": BlobPrinter,
        "QZBlob": BlobPrinter,
        "IParam": node_printer,
        "qzr::CMemParam": node_printer,
    }

    def __init__(self):
        super().__init__("qzrcore")

    def __call__(self, value):
        kind = value.type.strip_typedefs()
        if kind.code == gdb.TYPE_CODE_REF:
            value = value.referenced_value()
            kind = value.type.strip_typedefs()
        name = kind.unqualified().name or ""
        if name.startswith("CQZRef<"):
            return RefPrinter(value)
        make = self.BY_NAME.get(name)
        try:
            return make(value) if make else None
        except gdb.error:  # memory that cannot be read, or another layout than expected: gdb shows the members
            return None


def register(objfile=None):
    """For the values of one module and its callers, or of all."""
    gdb.printing.register_pretty_printer(objfile, Printers(), replace=True)


if __name__ == "__main__":
    register()
