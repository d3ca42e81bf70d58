"""Printers of gdb for the library's values, records, columns, texts, buffers and dates.

Installed where gdb loads it with the shared library; otherwise `source tools/debug/tarnutil-gdb.py`.

A program stops where it is broken as often as where it is whole.  So a printer only reads memory: it calls nothing in the
program and sorts nothing, and columns show their cells in their present order.  What it shows is bounded: texts end after 200
characters, children after `print elements`, and a nested value that would show too much, or leads back to itself, shows its
address.  What can't be read or makes no sense gets a text in <>.
"""

import itertools

import gdb
import gdb.printing

LONGEST_TEXT = 200  # characters, and bytes of blocks
MOST_CHILDREN = 200  # where `print elements` is unlimited
MOST_NESTED = 500  # values that a nested one may show in all
DEEPEST = 64
PAGE = 4096

UNREADABLE = "<unreadable>"

TAG_NAMES = (
    "tagEmpty", "tagByte", "tagShort", "tagLong", "tagFloat", "tagDouble", "tagChar", "tagUShort", "tagWord", "tagPlain9",
    "tagText", "tagWideText", "tagPlain12", "tagVector", "tagNumber", "tagBlob", "tagBlock", "tagString", "tagPlain18",
    "tagPlain19", "tagList", "tagMulti", "tagRecord",
)
NUMBERS = {
    1: "byteValue", 2: "shortValue", 3: "longValue", 4: "floatValue", 5: "doubleValue", 6: "charValue", 7: "ushortValue",
    8: "longValue", 14: "longValue",
}
PLAIN = (9, 12, 18, 19)
NESTED = (13, 20, 21, 22)
BLOCK_SIZE = 16


class Damaged(Exception):
    """What is in memory makes no sense; the text says why."""


def text_or_failure(call):
    """Runs a reader and answers its text, or that of its failure."""
    try:
        return call()
    except Damaged as damage:
        return str(damage)
    except gdb.error:  # gdb.MemoryError among them
        return UNREADABLE


# ---------------------------------------------------------------------------------------------- memory and texts

def read_bytes(address, count):
    """As many of the bytes as can be read, page by page."""
    found = b""
    while len(found) < count:
        at = address + len(found)
        piece = min(count - len(found), PAGE - at % PAGE)
        try:
            found += bytes(gdb.selected_inferior().read_memory(at, piece))
        except (gdb.error, OverflowError):
            break
    return found


def shown_units(units, width):
    """Characters as C would spell them between quotes."""
    escape = "\\x%02x" if width == 1 else "\\u%04x"
    short = {10: "\\n", 13: "\\r", 9: "\\t", 34: '\\"', 92: "\\\\"}
    return "".join(short.get(unit) or (chr(unit) if 32 <= unit < 127 else escape % unit) for unit in units)


def text_at(address, length=None):
    """A text in quotes, to its NUL or for so many bytes."""
    if address == 0:
        return "NULL"
    wanted = LONGEST_TEXT + 1 if length is None else min(length, LONGEST_TEXT + 1)
    found = read_bytes(address, wanted)
    if not found and wanted != 0:
        return UNREADABLE
    ended = length is None and 0 in found
    text = found[:found.index(0)] if ended else found
    shown = '"' + shown_units(text[:LONGEST_TEXT], 1) + '"'
    if len(text) > LONGEST_TEXT:
        return shown + "..."
    return shown if ended or len(found) == wanted else shown + UNREADABLE


def wide_text_at(pointer):
    if int(pointer) == 0:
        return "NULL"
    units = []
    for index in range(LONGEST_TEXT + 1):
        try:
            unit = int(pointer[index])
        except gdb.error:
            return 'u"' + shown_units(units, 2) + '"' + UNREADABLE if units else UNREADABLE
        if unit == 0:
            return 'u"' + shown_units(units, 2) + '"'
        units.append(unit)
    return 'u"' + shown_units(units[:LONGEST_TEXT], 2) + '"...'


def bytes_at(address, count):
    """Bytes in hexadecimal."""
    if count == 0:
        return "{}"
    found = read_bytes(address, min(count, LONGEST_TEXT))
    if not found:
        return "NULL" if address == 0 else UNREADABLE
    whole = len(found) == count
    end = "" if whole else "..." if len(found) == LONGEST_TEXT else " " + UNREADABLE
    return "{" + found.hex(" ") + end + "}"


def checked_count(count, most=None, what="count"):
    count = int(count)
    if count < 0:
        raise Damaged("<%s %d>" % (what, count))
    if most is not None and count > int(most):
        raise Damaged("<%s %d above capacity %d>" % (what, count, int(most)))
    return count


def counted(count, name):
    return "%d %s%s" % (count, name, "" if count == 1 else "s")


# ------------------------------------------------------------------------------------------------------ children

def most_children():
    return gdb.parameter("print elements") or MOST_CHILDREN


def vector_items(vector):
    """The elements of a vector, which a NULL entry ends."""
    if int(vector) == 0:
        return
    for index in itertools.count():
        element = vector[index]
        if int(element) == 0:
            return
        yield "[%d]" % index, element


def list_items(pointer):
    array = pointer["array"].dereference()
    for index in range(checked_count(pointer["count"], array["capacity"])):
        yield "[%d]" % index, array["data"][index]


def column_items(nodes):
    for index in range(checked_count(nodes["count"], nodes["capacity"])):
        cell = nodes["cells"][index].dereference()
        kind = int(cell["keyType"])
        key = str(int(cell["key"]["number"])) if kind == 1 else text_at(int(cell["key"]["text"]))
        yield "[%s]" % key, cell["value"]


def field_items(fields):
    values, ids = fields["values"].dereference(), fields["ids"].dereference()
    count = checked_count(fields["count"], min(int(values["capacity"]), int(ids["capacity"])))
    for index in range(count):
        yield "[%d]" % int(ids["data"][index]), values["data"][index]


def items_of(value):
    """What is nested in a MOLTVARIANT: names and pointers to values."""
    tag, payload = int(value["tag"]), value["payload"]
    if tag == 13:
        return vector_items(payload["vector"])
    if tag == 20:
        return list_items(payload["list"])
    if tag == 21:
        return column_items(payload["multi"]["nodes"].dereference())
    if tag == 22:
        return field_items(payload["record"].dereference())
    return iter(())


def shown_items(items):
    """One item more than is shown, so that gdb sees that there is more."""
    return itertools.islice(items, most_children() + 1)


def is_nested(value):
    return int(value["tag"]) in NESTED


def nested_size(value, budget, depth=0):
    """How many values a nested value shows, itself counted; above `budget` where they are too many or too deep."""
    if depth > DEEPEST:
        return budget + 1
    size = 1
    try:
        for _, pointer in shown_items(items_of(value)):
            if size > budget:
                break
            below = pointer.dereference()
            size += nested_size(below, budget - size, depth + 1) if int(pointer) != 0 and is_nested(below) else 1
    except (Damaged, gdb.error):
        pass  # what is shown ends here too
    return size


def children_of(items):
    """What gdb shows of nested items; one that takes more than is left of the budget shows its address."""
    budget = MOST_NESTED
    try:
        for index, (name, pointer) in enumerate(shown_items(items)):
            if index == most_children():
                yield "[...]", "..."
                return
            child, size = "NULL", 0
            if int(pointer) != 0:
                child, size = child_at(pointer, budget)
            budget -= size
            yield name, child
    except Damaged as damage:
        yield "[...]", str(damage)
    except gdb.error:
        yield "[...]", UNREADABLE


def child_at(pointer, budget):
    try:
        value = pointer.dereference()
        size = nested_size(value, budget) if is_nested(value) else 0
        return (value, size) if size <= budget else (pointer, 0)
    except gdb.error:
        return UNREADABLE, 0


# ------------------------------------------------------------------------------------------------------ printers

class Printer:
    """A printer of one object.  Below it: `text` says what it is, `items` what is nested in it."""

    def __init__(self, value):
        self.value = value

    def text(self):
        raise NotImplementedError

    def items(self):
        return iter(())

    def to_string(self):
        return text_or_failure(self.text)

    def children(self):
        try:
            self.text()
            items = self.items()
        except (Damaged, gdb.error):
            return iter(())  # the text says so
        return children_of(items)


class ValuePrinter(Printer):
    def to_string(self):
        return text_or_failure(lambda: (self.tag_name() + " " + text_or_failure(self.text)).rstrip())

    def tag_name(self):
        tag = int(self.value["tag"])
        if not 0 <= tag < len(TAG_NAMES):
            raise Damaged("<unknown tag %d>" % tag)
        return TAG_NAMES[tag]

    def text(self):
        tag, payload = int(self.value["tag"]), self.value["payload"]
        if tag in NUMBERS:
            return shown_number(payload[NUMBERS[tag]], tag)
        if tag in PLAIN:
            return bytes_at(int(payload["plain"].address), payload["plain"].type.sizeof)
        if tag in NESTED:
            return nested_text(tag, self.value)
        if tag == 10:
            return text_at(int(payload["text"]))
        if tag == 11:
            return wide_text_at(payload["wideText"])
        if tag == 15:
            length = checked_count(payload["blob"]["length"], what="length")
            return counted(length, "byte") + " " + bytes_at(int(payload["blob"]["data"]), length)
        if tag == 16:
            return bytes_at(int(payload["block"]), BLOCK_SIZE)
        if tag == 17:
            return "NULL" if int(payload["string"]) == 0 else string_text(payload["string"].dereference())
        return ""

    def items(self):
        return items_of(self.value)


def shown_number(number, tag):
    if tag == 6:
        code = int(number)
        return "%d '%s'" % (code, shown_units([code & 0xFF], 1))
    return number.format_string() if tag in (4, 5) else str(int(number))


def nested_text(tag, value):
    payload = value["payload"]
    if tag == 13:
        if int(payload["vector"]) == 0:
            return "NULL"
        found = sum(1 for _ in shown_items(vector_items(payload["vector"])))
        return "of more than %d" % most_children() if found > most_children() else "of %d" % found
    if tag == 20:
        list_at = payload["list"]
        return "of %d" % checked_count(list_at["count"], list_at["array"]["capacity"])
    if tag == 21:
        return "of " + column_text(payload["multi"]["nodes"].dereference())
    return "of " + fields_text(payload["record"].dereference())


def column_text(nodes):
    count = checked_count(nodes["count"], nodes["capacity"])
    return counted(count, "cell") + (", to be sorted" if int(nodes["needsSort"]) != 0 else "")


def fields_text(fields):
    next(field_items(fields), None)  # its checks
    return counted(int(fields["count"]), "field")


def string_text(string):
    return text_at(int(string["text"]), checked_count(string["length"], what="length"))


class OwnedValuePrinter(Printer):
    """A tarn::Value, which shows as what it owns."""

    def printer(self):
        return ValuePrinter(self.value["value_"])

    def text(self):
        return self.printer().to_string()

    def items(self):
        return self.printer().items()


class ValueViewPrinter(OwnedValuePrinter):
    def printer(self):
        return ValuePrinter(self.value["value_"].dereference())

    def text(self):
        return "nothing" if int(self.value["value_"]) == 0 else super().text()


class RecordPrinter(Printer):
    def text(self):
        rows = text_or_failure(lambda: counted(checked_count(self.value["numMulti"], what="rows"), "row"))
        return "record of " + fields_text(self.value["fields"].dereference()) + ", " + rows

    def items(self):
        return field_items(self.value["fields"].dereference())


class FieldListPrinter(Printer):
    def text(self):
        return fields_text(self.value)

    def items(self):
        return field_items(self.value)


class ColumnPrinter(Printer):
    def nodes(self):
        return self.value["nodes"].dereference()

    def text(self):
        return "column of " + column_text(self.nodes())

    def items(self):
        return column_items(self.nodes())


class NodeListPrinter(ColumnPrinter):
    def nodes(self):
        return self.value


class StringPrinter(Printer):
    def text(self):
        return string_text(self.value)


class BufferPrinter(Printer):
    def text(self):
        capacity = checked_count(self.value["capacity"], what="capacity")
        length = checked_count(self.value["length"], capacity, "length")
        return counted(length, "byte") + " " + bytes_at(int(self.value["data"]), length)


class DatePrinter(Printer):
    def text(self):
        date = int(self.value["value"])
        day, month, year = date & 31, date >> 5 & 15, 1970 + (date >> 9)
        shown = "%02d/%02d/%d" % (month, day, year) if 1 <= month <= 12 and day > 0 else "<no date>"
        return "%s (0x%04X)" % (shown, date)


def build_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("tarnutil")
    for name, printer in (
        ("MOLTVARIANT", ValuePrinter),
        ("tarnEngineData", RecordPrinter),
        ("tarnFieldList", FieldListPrinter),
        ("multiColumn", ColumnPrinter),
        ("nodeList", NodeListPrinter),
        ("tarnString", StringPrinter),
        ("tarnBuffer", BufferPrinter),
        ("PKDATE", DatePrinter),
        ("tarn::Value", OwnedValuePrinter),
        ("tarn::ValueView", ValueViewPrinter),
    ):
        printers.add_printer(name, "^%s$" % name, printer)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build_printers(), replace=True)
