#!/usr/bin/env python3
"""Writes the seeds of the fuzz targets that nobody would write by hand: those that nest deeply, promise much,
are cut short, or hold bytes.  Seeds that a fuzzer found are beside them and are left alone.

    tools/make_fuzz_seeds.py fuzz/seeds
"""

import pathlib
import struct
import sys

word = lambda number: struct.pack("<I", number & 0xFFFFFFFF)


def value(tag, payload, size=None):
    return word(tag) + word(len(payload) if size is None else size) + payload


def index(*records, count=None):  # of (id, type, repeats); the first byte of the input is the mode
    block = b"".join(word(i) + word(t) + word(r) + word(0) for i, t, r in records)
    return b"\2" + word(12) + word(1) + word(len(records) if count is None else count) + block


def vectors(depth, innermost=b""):
    nested = innermost
    for _ in range(depth):
        nested = word(13) + word(0) + word(1) + nested
    return nested


LONG, TEXT = value(3, word(42)), value(10, b"abc\0")
WIDE, BLOB = value(11, b"a\0\0\xD8\0\0"), word(15) + word(9) + word(5) + b"\0\1\2\3\4"
DOUBLE, STRING, LIST = value(5, struct.pack("<d", 12.5)), value(17, b"x 1/2\0"), value(20, bytes(8))
LONG_TAIL = value(3, b"8 bytes and more than they hold")
MIXED = index((7, 0, 2), (336, 1, 3), (7, 1, 2), (8, 0, 1)) + LONG + TEXT + DOUBLE + value(0, bytes(8)) + STRING + \
    WIDE + BLOB + word(13) + word(8) + word(2) + LONG + vectors(1, TEXT)


def registry(kind, name, data, record_type=4, lengths=None):  # sealed by the target
    sizes = lengths or (len(name), len(data))
    return kind + b"\x40" + bytes(8) + word(record_type) + word(sizes[0]) + word(sizes[1]) + name + data


UTF16 = lambda text: b"\xFF\xFE" + text.encode("utf-16-le")

SEEDS = {
    "indexed_file": {
        "mixed": MIXED,
        "append": b"\0" + MIXED[1:],
        "insert": b"\1" + MIXED[1:],
        "cut_in_value": MIXED[:-3],
        "cut_in_index": MIXED[:40],
        "header_alone": word(12)[:3],
        "long_header": b"\2" + word(20) + word(1) + word(1) + bytes(8) + MIXED[13:29] + LONG,
        "short_header": b"\2" + word(10) + MIXED[5:],
        "huge_header": b"\2" + word(0xFFFFFFFF) + MIXED[5:],
        "promised_records": index((7, 0, 1), count=0x7FFFFFFF) + LONG,
        "promised_repeats": index((7, 0, 0x7FFFFFFF), (8, 1, 0x7FFFFFFF)) + LONG + TEXT,
        "many_promises": index(*((i, i % 2, 5000) for i in range(220))) + LONG * 20,
        "negative_repeats": index((7, 0, -1), (8, 0, -0x80000000), (9, 0, 1)) + LONG,
        "same_pairs": index((7, 0, 1), (7, 0, 2), (7, 1, 2)) + LONG + TEXT + LONG,
        "promised_elements": index((7, 0, 2)) + word(13) + word(0) + word(0x7FFFFFFF) + LONG,
        "nested_counts": index((7, 0, 1)) + (word(13) + word(0) + word(20000)) * 300,
        "deep_64": index((7, 0, 2)) + vectors(64, LONG) + TEXT,
        "deep_65": index((7, 0, 2)) + vectors(65, LONG) + TEXT,
        "deep_300": index((7, 0, 2)) + vectors(300, BLOB) + TEXT,
        "long_blob": index((7, 0, 2)) + word(15) + word(8) + word(0x80000000) + bytes(8) + LONG,
        "one_byte_short_text": index((7, 0, 2)) + LONG + value(10, b"abc", 4),
        "one_byte_short_wide": index((7, 0, 2)) + LONG + value(11, b"abc", 4),
        "one_byte_short_plain": index((7, 0, 2)) + LONG + value(5, b"1234567", 8),
        "one_byte_short_blob": index((7, 0, 2)) + LONG + word(15) + word(8) + word(4) + b"abc",
        "one_byte_short_prefix": index((7, 0, 2)) + LONG + value(3, b"abcd")[:7],
        "one_byte_short_element": index((7, 0, 1)) + word(13) + word(0) + word(2) + LONG + value(10, b"abc", 4),
        "long_text": index((7, 0, 2)) + value(10, b"abc", 0x7FFFFFFF) + LONG,
        "without_nul": index((7, 0, 3)) + value(10, b"abc") + value(17, b"ab\0c") + value(11, b"a\0b\0c"),
        "empty_texts": index((7, 0, 3)) + value(10, b"") + value(11, b"") + value(17, b""),
        "nul_alone": index((7, 0, 3)) + value(11, b"\0\0") + value(10, b"\0") + value(17, b"\0"),
        "no_form": index((7, 0, 5)) + value(16, bytes(16)) + LIST + value(21, bytes(8)) + value(22, bytes(3)) + LONG_TAIL,
        "sparse_rows": index((1, 1, 300), (2, 1, 2)) + value(0, b"") * 299 + LONG + DOUBLE + DOUBLE,
    },
    "text_file": {
        "plain": b"\2#2^101|15|ABC^102|3|25^#0|2^7|5|1.5^8|15|X^7|5|2.5^8|15|Y^",
        "all_codes": b"\2#8^1|2|70000^2|3|-5^3|4|1e40^4|5|.5^5|12|xy^6|15|a|b^7|21|9^8|99|z^#0|0^",
        "recurring_column": b"\1#0^#0|2^7|3|1^8|3|2^8|3|3^7|3|4^9|3|5^8|3|6^8|3|7^",
        "recurring_for_long": b"r#0^#1|1^1|3|1^2|3|1^",
        "gaps": b"\0#0^#0|3^1|3|1^2|3|1^1|3|2^1|3|3^3|3|1^",
        "promised_fields": b"\2#2147483647^1|3|5^#0|2147483647^7|3|1^",
        "promised_rows": b"\1#0^#0|2147483647^" + b"7|3|1^" * 300,
        "negative": b"\2#-5^#0|-1^7|3|1^",
        "open_end": b"\2#1^1|15|x^#0|2^7|3|1^7|3|2",
        "runs": b"\2^^#1^^^1|15|x^^#0|1^^7|3|1^^^",
        "no_field": b"\2#2^1|15^2|3|4^#0|1^",
        "wide_rows": b"\0#0^#0|9^" + b"".join(b"%d|3|%d^" % (i, i) for i in range(320)),
        "nul": b"\2#1^1|15|x\0y^#0|0^",
    },
    "menu": {
        "plain": b"POPUP,File,7,MENUITEM,Open,2,100,Open a file,MENUITEM,SEPARATOR,POPUP,More,1,MENUITEM,x,1,5,y,END,END",
        "short_words": b"P,root,0,M,a,1,5,x,P,b,2,M,S,M,c,3,-6,y,E,M,S,M,d,4,7,z",
        "deep": b"P,a,1," * 680,
        "deep_and_back": b"P,a,1," * 300 + b"END," * 400,
        "wide": b"P,root,0," + b"M,S," * 900,
        "no_popup": b"MENUITEM,a,1,2,b,END",
        "cut": b"POPUP,File,7,MENUITEM,Open,2,100",
        "lines": b"POPUP\r\n File\r\n\t7\r\n MENUITEM , Open & close , 2147483648,-99999999999,  \r\n,END\r\n",
        "empty_tokens": b"P, ,0, ,M,  ,1,2,  ,P,x,1",
        "nul": b"P,a,1,M,b,1,2,c\0,M,d,1,2,e",
    },
    "ini_file": {
        "plain": b"section\nkey\nvalue\n\x40; remark\r\n[section]\r\nkey = \"old\"\r\n; in between\r\nother=1\r\n\r\n[next]\r\nkey=2\r\n",
        "new_section": b"fresh\nkey\n v \n\x05[section]\nkey=1",
        "carriage_returns": b"s\nk\nv\n\x40[s]\ra=1\rk=0x1F\r[t]\rk=2",
        "equal_names": b"S\nK\nv\n\x40[s]\nk=1\nK=2\n[S]\nk=3\n",
        "blank_lines": b"s\nnew\nv\n\x40[s]\na=1\n\n; remark\n\n \t\n[t]\nb=2\n",
        "one_quote": b"s\nother\n\"\n\x40[s]\nk=1\n",
        "name_alone": b"s\nk\nv\n\x40[s]\nk\nk = 2\n",
        "odd_heads": b"s\nk\nv\n\x40[[s]\n[s\nk=1\n[]\n[s]]]\n=v\n",
        "structure": b"s\nk\n00017F80FEFFFD\n\x40[s]\nk=00017f80fefffd\n",
        "integers": b"s\nk\n-0b1012\n\x40[s]\nk=\t-0x7fffffffff\n",
        "utf8": b"s\nk\n\xE4\n\x40\xEF\xBB\xBF[s]\nk=\xC3\xA4\n",
        "utf16": b"s\nk\n\x80\xFF\n\x40" + UTF16("[s]\r\nk=\u20AC\uD7FF\r\n"),
        "utf16_odd": b"s\nk\nv\n\x40" + UTF16("[s]\r\nk=\u0142") + b"\x00\xD8\x41",
        "long_line": b"s\nk\nv\n\xFF[s]\n" + b"k" * 2000 + b"=" + b"v" * 2000,
        "many_sections": b"zz\nk\nv\n\x40" + b"".join(b"[%d]\nk=%d\n" % (i, i) for i in range(300)),
    },
    "base64": {
        "encoded": b"\1SGVsbG8sIHdvcmxkIQ==",
        "variant": b"\2?_?_ABCD",
        "odd_ends": b"\3A=CD",
        "third_alone": b"\3Zm9vA==B",
        "blanks": b"\3 \t  Zm9v\r\nYmFy",
        "a_piece": b"\3" + b"ABCDabcd0123+/zZ" * 4,
        "pieces": b"\3" + b"ABCDabcd0123+/zZ" * 9 + b"Zm8=",
        "junk_in_second_piece": b"\3" + b"A" * 70 + b"-" + b"A" * 120,
        "long": b"\7" + bytes(range(256)) * 12,
        "nul": b"\2AAAA\0AAAA",
    },
    "registry_value": {
        "number": registry(b"\0", b"x", word(640)),
        "spelled": registry(b"\0", b"X", b"text", 1),
        "large": registry(b"\0", b"x", b"d" * 300, 3),
        "empty": registry(b"\0", b"x", b""),
        "other_name": registry(b"\0", b"y", b"text"),
        "unnamed": registry(b"\0", b"", b"x"),
        "key": registry(b"\1", b"x", b"Class", 0),
        "key_class": registry(b"\1", b"X", b"c" * 0x40, 0),
        "key_of_another": registry(b"\1", b"x/../y", b"", 0),
        "not_sealed": b"\6" + registry(b"", b"x", word(1)),
        "long_name": registry(b"\0", b"x", b"", 1, (0xFFFFFFFF, 2)),
        "long_data": registry(b"\0", b"x", b"abc", 1, (1, 0x7FFFFFFF)),
        "wrapped_sum": registry(b"\4", b"xyz", b"", 1, (0x80000000, 0x80000003)),
        "cut": b"\4\x10TRV1" + bytes(15),
    },
    "date": {
        "compact": b"113099\n02291900\n" + word(3) + b"\x7E\x3B",
        "slashed": b"11/30/99\n11/24/1999\n" + word(-5) + b"\x01\x00",
        "with_time": b"11/30/1999 16:05:00\n01/19/2038 03:14:07\n" + word(250) + b"\xFF\xFF",
        "no_date": b"12/31/69\n12/31/1969\n" + word(0) + b"\x20\x00",
        "no_date_and_time": b"12/31/1969 10:00:00\n12/31/69 10:00:00\n" + word(1) + b"\x3F\x04",
        "beyond": b"1/2/-2147483649 5:6\n99999999999/1/2 3:4\n" + word(0x7FFFFFFF) + b"\x9F\x01",
        "last_days": b"12/31/9999\n02/30/1999\n" + word(0x80000000) + b"\xBF\xFE",
        "short": b"1/1/9\n010100\n" + word(-1) + b"\x21\x00",
        "signs": b"-1/+2/ 3\n \t\n" + word(7) + b"\x00\x80",
        "holiday": b"12/23/1998\n99/11/30\n" + word(40) + b"\x02\x60",
    },
    "number": {
        "plain": b"1,234.50\n$*,###*.##\n\2" + struct.pack("<d", 1.005),
        "negative": b"-1234567.125\n(*#*)\n\1" + struct.pack("<d", -0.5),
        "exponents": b"1e-310\n##/##\n\x11" + struct.pack("<d", 5e-324),
        "hexadecimal": b"0x1.8p-3\n*###*#\n\0" + struct.pack("<d", 1.7976931348623157e308),
        "infinity": b" +infinity\n#\n\3" + struct.pack("<d", float("inf")),
        "scaled": b"1,5.25MM\n\n\5" + struct.pack("<d", 4503599627370497.5),
        "zeros": b"  000.5000 \n**\n\4" + struct.pack("<d", 0.000244140625),
        "long": b"9" * 400 + b"." + b"0" * 300 + b"5\n" + b"#" * 64 + b"\n\x27" + struct.pack("<d", 1e22),
        "limits": b"-2147483649\n.*\n\6" + struct.pack("<d", 9223372036854775807.0),
    },
    "price": {
        "mixed": b"12 3/8\n-1/8\n" + word(8),
        "decimal": b"12.9999\n0.5\n" + word(512),
        "signs": b"-1,234 5/16\n+2\n" + word(3),
        "wrapping": b"4294967297 2147483648/4294967295\n99999999999\n" + word(16),
        "no_denominator": b"5 4/\n4/0\n" + word(2),
        "zeros": b"0 1/2\n0\n" + word(0),
        "halves": b"1024/4096\n1\n" + word(1),
        "odd_marks": b"1/2/3.5\n1-\n" + word(515),
        "long": b" " * 300 + b"1" * 400 + b"/" + b"3" * 300 + b"\n.00001\n" + word(9),
        "many_decimals": b"1.000000000000000000000005e25\n1e-7\n" + word(64),
        "tie": b"-1/512\n0.001953125\n" + word(8),
        "edge": b"8388607.998046875\n-0.001\n" + word(256),
    },
    "symbol": {
        "options": b"XYZ JAN 25 1/2 PUT\nABC DEC 100 CALL\nXYZ JAN 25 1/2 put\nIBM FEB 5\n",
        "sides": b"ABC JAN 5 9/10 call\nABC JAN 5 0 Put\nABC JAN 5 Call\nABC JAN 5 CALLS\n",
        "odd": b" JAN 5 PUT\nABCD JAN 5 PUT\nABC JANU 5 PUT\nABC JAN  5  1/2  CALLS\nABC JAN 5 CALL \nABC\n",
        "columns": b"XYZ JAN 100.00 CALL\nXYZ\nXYZ J\nXYZ JAN 1\n",
        "forms": b"123456789\n5551234\n2125551234\n11301999\n11/30/1999\n",
        "long": b"A" * 1200 + b"\n" + b" " * 1200 + b"\nABC JAN " + b"1" * 1200 + b" 1/2 PUT\n",
        "line_ends": b"a\rb  c\n\r\n \r \n",
    },
    "record_work": {
        "rows": b"\0" + bytes(b for i in range(60) for b in (i, 128 + i % 128, i * 7 % 256, i * 11 % 256)),
        "appends": b"\0" + bytes(b for i in range(40) for b in ((0, 2, 9, 6)[i % 4], 130 + i, 16 * i % 256 + i % 16, i)),
        "low_appends": b"\0" + bytes(b for i in range(24) for b in ((0, 0, 9, 8, 0, 10)[i % 6], 128 + i % 3, i % 3 * 17 + i % 2, 5 + i)),
        "moves": b"\0" + bytes(b for i in range(60) for b in ((1, 5, 3, 4, 5)[i % 5], 129 + i % 3, i * 37 % 256, i)),
        "wild": b"w" + b"".join(bytes([i, 128 + i]) + word(0x7FFFFFFF - i % 3) + bytes([i]) for i in range(60)),
        "wild_low": b"w" + b"".join(bytes([i, i]) + word(i % 5 + i % 7 * 16) + bytes([i]) for i in range(60)),
        "wild_twice": b"w" + b"".join(bytes([(0, 0, 1, 2, 0, 11, 0, 5)[i % 8], i % 2]) + word(1 + i % 3) + bytes([3 + i]) for i in range(48)),
        "wild_negative": b"w" + b"".join(bytes([i % 6, 128 + i]) + word(-i * i) + bytes([i]) for i in range(60)),
    },
}

root = pathlib.Path(sys.argv[1])
for target, seeds in SEEDS.items():
    (root / target).mkdir(parents=True, exist_ok=True)
    for name, content in seeds.items():
        assert len(content) <= 4096, (target, name, len(content))
        (root / target / name).write_bytes(content)
