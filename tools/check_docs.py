#!/usr/bin/env python3
"""Compares the documentation with what it describes, for `./dev docs`; links are linkchecker's.

    check_docs.py        runs in the repository's root, after Doxygen; says what is wrong and answers 1 if anything is

- Every name of tests/shared/exports.txt is on a page and has a comment.
- The examples of the format pages are the files of tests/data, byte for byte.
- Files, folders, headings and tests that a page of the sources names or links to exist.
- No page that Doxygen made is blank, and a comment lists no parameter that its declaration lacks.
"""
import collections
import pathlib
import re
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree as ElementTree

PAGES = pathlib.Path("build/docs")
DATA = pathlib.Path("tests/data")


# ---- Exported names

def parameter_count(name):
    """Of a demangled function, e.g. 2 of f(int (*)(int, int), char)."""
    depth, count, inside = 0, 0, name[name.index("(") + 1:]
    for place, c in enumerate(inside):
        if depth == 0 and c == ")":
            return count + (place > 0)
        count += depth == 0 and c == ","
        depth += (c in "(<[") - (c in ")>]")
    raise ValueError(name)


def text_of(element):
    return "".join(element.itertext()).strip() if element is not None else ""


def has_comment(element):
    return bool(text_of(element.find("briefdescription")) or text_of(element.find("detaileddescription")))


def is_special(owner, name, parameters):
    """The members that C++ makes by itself: the comment of their class is enough."""
    if name in ("~" + owner, "operator="):
        return True
    return name == owner and (not parameters or owner + " &" in parameters[0])


def documented():
    """The classes and functions on the pages: name, or name and number of parameters, with their comments."""
    classes, functions, seen = {}, collections.defaultdict(list), set()
    for path in sorted((PAGES / "xml").glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().findall("compounddef"):
            scope = "" if compound.get("kind") == "file" else text_of(compound.find("compoundname"))
            if compound.get("kind") in ("class", "struct", "union"):
                classes[scope] = has_comment(compound)
            for member in compound.iter("memberdef"):
                page = PAGES / "html" / (member.get("id").rpartition("_1")[0] + ".html")
                if member.get("kind") not in ("function", "friend") or member.get("id") in seen or not page.exists():
                    continue
                seen.add(member.get("id"))
                name = text_of(member.find("name"))
                parameters = [text_of(p.find("type")) for p in member.findall("param")]
                enough = has_comment(member) or member.get("prot") == "private"  # for what inline code calls
                enough = enough or (is_special(scope, name, parameters) and classes.get(scope, False))
                holder = scope.rpartition("::")[0] if member.get("kind") == "friend" else scope
                functions[f"{holder}::{name}" if holder else name, len(parameters)].append(enough)
    return classes, functions


def check_exports():
    classes, functions = documented()
    wanted, problems = collections.defaultdict(list), []
    names = pathlib.Path("tests/shared/exports.txt").read_text(encoding="utf-8").splitlines()
    for name in (name.replace("[abi:cxx11]", "") for name in names):
        data = re.fullmatch(r"(?:vtable|typeinfo|typeinfo name) for (.*)", name)
        if data:
            if not classes.get(data[1]):
                problems.append(f"{name}: its class has no page or no comment")
        elif "(" in name:
            wanted[name[:name.index("(")], parameter_count(name)].append(name)
        else:
            problems.append(f"{name}: neither a function nor a class")
    for key, overloads in wanted.items():
        for what, count in (("page", len(functions[key])), ("comment", sum(functions[key]))):
            if count < len(overloads):
                problems.append(f"{', '.join(overloads)}: {count} of {len(overloads)} have a {what}")
                break
    return f"{len(names)} exported names", problems


# ---- Examples of files

EXAMPLE = re.compile(r"`tests/data/([^`]+)`:\n\n```\n(.*?)^```$", re.S | re.M)


def bytes_of(block):
    """The bytes of an example; ValueError for a line that isn't at its offset."""
    content = b""
    for line in block.splitlines():
        row = re.fullmatch(r" *(\d+)  ((?:[0-9A-F]{2} {1,2})*[0-9A-F]{2})(?:   .*)?", line)
        if row is None or int(row[1]) != len(content):
            raise ValueError(line)
        content += bytes.fromhex(row[2])
    return content


def check_examples():
    shown, problems = set(), []
    for page in sorted(pathlib.Path("docs").glob("*.md")):
        for name, block in EXAMPLE.findall(page.read_text(encoding="utf-8")):
            shown.add(DATA / name)
            try:
                same = bytes_of(block) == (DATA / name).read_bytes()
            except (OSError, ValueError) as error:
                problems.append(f"{page}: {DATA / name}: {error}")
                continue
            if not same:
                problems.append(f"{page}: the example differs from {DATA / name}")
    stored = {path for path in DATA.rglob("*") if path.is_file() and path.suffix not in (".md", ".cpp")}
    problems += [f"{path}: on no page" for path in sorted(stored - shown)]
    return f"{len(shown)} files byte by byte", problems


# ---- Links and names of files

FENCE = re.compile(r"^```.*?^```$", re.S | re.M)
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
PATH = re.compile(r"`((?:[\w%-]+/)+(?:[\w%-]+\.(?:h|cpp|md|py|txt|dat|ini|mnu|dib))?)`")
BARE = re.compile(r"`([\w-]+\.(?:h|cpp|py|cmake))`")
TEST = re.compile(r"`([A-Z]\w+\.[A-Z]\w+)`")
MADE = ("build/", "include/", "share/", "tarnutil/")  # not of the repository


def anchors(text):
    """As sites that show Markdown make them of headings."""
    for heading in re.findall(r"^#+ +(.*)$", FENCE.sub("", text), re.M):
        yield re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def test_names():
    for path in pathlib.Path("tests").rglob("*_test.cpp"):
        for suite, name in re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", path.read_text(encoding="utf-8"), re.M):
            yield f"{suite}.{name}"


def check_links():
    count, problems, tests = 0, [], set(test_names())
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], capture_output=True,
                            check=True, text=True).stdout
    files = [pathlib.Path(line) for line in listed.splitlines()]
    for page in (path for path in files if path.suffix == ".md"):
        text = FENCE.sub("", page.read_text(encoding="utf-8"))
        for link in LINK.findall(text):
            target, _, anchor = urllib.parse.unquote(link).partition("#")
            if ":" in target:
                continue
            count += 1
            path = page.parent / target if target else page
            if not path.exists() or (anchor and anchor not in anchors(path.read_text(encoding="utf-8"))):
                problems.append(f"{page}: {link} leads nowhere")
        for name in PATH.findall(text):
            count += 1
            if not name.startswith(MADE) and not any((base / name).exists() for base in (pathlib.Path(), page.parent)):
                problems.append(f"{page}: {name} doesn't exist")
        for name in BARE.findall(text):
            count += 1
            if name not in {path.name for path in files}:
                problems.append(f"{page}: there is no {name}")
        for name in TEST.findall(text):
            count += 1
            if name not in tests:
                problems.append(f"{page}: there is no test {name}")
    return f"{count} links and names of files and tests", problems


# ---- What Doxygen made

CONTENTS = re.compile(r'<div class="contents">(.*)</div><!-- contents -->', re.S)
ITEM = re.compile(r"((?:^ */// .*\n)+)((?:^ *(?!///)\S.*\n)+)", re.M)


def check_pages():
    """No page is blank, and a parameter that a comment lists (`- `name`: ...`) is one of the declaration's."""
    pages, problems = sorted((PAGES / "html").glob("*.html")), []
    for page in pages:
        contents = CONTENTS.search(page.read_text(encoding="utf-8"))
        if contents and not re.sub(r"<[^>]*>|\s", "", contents[1]):
            problems.append(f"{page}: blank")
    for header in (path for path in pathlib.Path().glob("*/*.h") if "/// @file" in path.read_text(encoding="utf-8")):
        for comment, declaration in ITEM.findall(header.read_text(encoding="utf-8")):
            for names in re.findall(r"/// - ((?:`\w+`,? ?)+):", comment):
                problems += [f"{header}: {name} is no parameter" for name in re.findall(r"\w+", names)
                             if not re.search(rf"\b{name}\b", declaration)]
    return f"{len(pages)} pages", problems


def main():
    failed = False
    for check in (check_exports, check_examples, check_links, check_pages):
        what, problems = check()
        for problem in problems:
            print(problem, file=sys.stderr)
        print(f"{what}: {len(problems)} problems" if problems else f"{what}: all well")
        failed = failed or bool(problems)
    return 1 if failed else 0


sys.exit(main())
