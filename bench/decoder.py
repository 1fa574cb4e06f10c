"""Decodes binary trace records as scripts beside a firmware's log do: a table of types, one unpack a
value, a line a record. decoder.py LOG: the lines on standard output."""
import struct
import sys

FORMATS = {1: ">c", 2: ">B", 3: ">?", 4: ">h", 5: ">h", 6: ">i", 7: ">i", 8: ">q", 9: ">Q", 10: ">d",
           11: ">HBB", 12: ">BBB"}
STRING, BYTES = 13, 14
WORDINGS = {("bench", 1): "record {0} of {1} with {2}"}
LEVELS = {1: "error", 2: "support", 3: "debug"}


def items(record):
    at = 0
    while at < len(record):
        kind = record[at]
        at += 1
        if kind in (STRING, BYTES):
            (size,) = struct.unpack_from(">I", record, at)
            value = record[at + 4 : at + 4 + size]
            yield value.decode("cp1251") if kind == STRING else value.hex(" ").upper()
            at += 4 + size
        else:
            form = FORMATS[kind]
            values = struct.unpack_from(form, record, at)
            yield values if len(values) > 1 else values[0]
            at += struct.calcsize(form)


def lines(log):
    while prefix := log.read(4):
        (size,) = struct.unpack(">I", prefix)
        (year, month, day), (hour, minute, second), level, number, module, *arguments = items(
            log.read(size))
        message = WORDINGS[module, number].format(*arguments)
        yield (f"{LEVELS[level]:7} {year:04}-{month:02}-{day:02} {hour:02}:{minute:02}:{second:02} "
               f"[{module}] {message}\n")


with open(sys.argv[1], "rb") as log:
    sys.stdout.writelines(lines(log))
