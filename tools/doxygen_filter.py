#!/usr/bin/env python3
"""Turns a header's plain comments into Doxygen's, for `./dev docs`.

    doxygen_filter.py HEADER      writes the header to standard output, each line at its place

A comment is read as the headers are written: it stands for the declarations below it up to the next blank line or
comment, `// ---` begins a section, a comment with a blank line behind it belongs to its section, and one behind a
declaration to that declaration.  In a comment, indented lines behind a blank one are code, and otherwise rows of a
name and a text; `Owner:`, `Bad input:` and so on are labels.
"""
import os
import re
import sys

LABELS = ("Owner", "Bad input", "Source", "Example", "Threads", "Locale", "Buffers")
LABEL = re.compile(rf"({'|'.join(LABELS)}):\s+(.*)", re.S)
ROW = re.compile(r"   (\S+(?: \S+)*?)  +(\S.*)")
COMMENT = re.compile(r"(\s*)//(.*)")
SECTION = re.compile(r"\s*// -{3,} ?(.*)")
TRAILING = re.compile(r"^(.*\S)(\s+)// (.*)$")
TYPE = re.compile(r"\s*(template|class|struct|union|enum|namespace)\b")


# ---- The text of a comment

def escaped(text):
    text = re.sub(r"([\\@#$%*\[\]~])", r"\\\1", text)
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace('"', "&quot;")


def inline(text):
    """One run of text, with what stands in backticks as code."""
    parts = re.split(r"`([^`]*)`", text)
    shown = "".join(f"<code>{escaped(p)}</code>" if i % 2 else escaped(p) for i, p in enumerate(parts))
    return re.sub(r"\bOwner:", "<b>Owner:</b>", shown)


def first_sentence(text):
    end = re.search(r"\.(?=\s{2}|\s+[A-Z`]|\s*$)", text)
    return (text[:end.end()], text[end.end():].strip()) if end else (text, "")


class Comment:
    """Elements of a comment, each with the number of the line that it begins in."""

    def __init__(self, lines):
        self.elements = []  # (line, kind, text or rows)
        self.after_blank = False
        for number, line in enumerate(lines):
            self.add(number, line[1:] if line.startswith(" ") else line)

    def add(self, number, line):
        kind = self.elements[-1][1] if self.elements and not self.after_blank else None
        blank, self.after_blank = self.after_blank, not line.strip()
        if self.after_blank:
            return
        row = ROW.fullmatch("   " + line[2:]) if line.startswith("  ") and not line.startswith("   ") else None
        if line.startswith("  ") and (blank or kind == "code"):
            if kind != "code" and not (self.elements and self.elements[-1][1] == "code"):
                self.elements.append((number, "code", []))
            self.elements[-1][2].append((number, line[2:]))
        elif row:
            if kind != "rows":
                self.elements.append((number, "rows", []))
            self.elements[-1][2].append([row[1], row[2]])
        elif kind == "rows" and line.startswith("  "):
            self.elements[-1][2][-1][1] += " " + line.strip()
        elif line.startswith("- "):
            if kind != "list":
                self.elements.append((number, "list", []))
            self.elements[-1][2].append(line[2:])
        elif kind == "list" and line.startswith("  "):
            self.elements[-1][2][-1] += " " + line.strip()
        elif kind == "text" and not LABEL.match(line) and not re.match(r"Answers? ", line):
            self.elements[-1][2][0] += " " + line.strip()
        else:
            self.elements.append((number, "text", [line.strip()]))

    def shown(self, declarations=None):
        """The elements as (line, markup)."""
        result = []
        for place, (number, kind, content) in enumerate(self.elements):
            if kind == "code":
                result += self.code(content)
            elif kind == "rows":
                result.append((number, rows(content, declarations)))
            elif kind == "list":
                items = "".join(f"<li>{inline(item)}</li>" for item in content)
                result.append((number, f"<ul>{items}</ul>"))
            else:
                result.append((number, paragraph(content[0], place == 0)))
        return result

    @staticmethod
    def code(content):
        plain = not any(re.search(r"[;(]", line) for _, line in content)
        begin, end = ("\\verbatim", "\\endverbatim") if plain else ("\\code{.cpp}", "\\endcode")
        shown = [[number, line] for number, line in content]
        shown[-1][1] += end
        return [(content[0][0] - 1, begin)] + [tuple(line) for line in shown]

    def one_line(self, declarations=None):
        return " ".join(text for _, text in self.shown(declarations))


def paragraph(text, first):
    if first:
        brief, rest = first_sentence(text)
        return f"\\brief {inline(brief)} \\details " + (f"<p>{inline(rest)}</p>" if rest else "")
    label = LABEL.match(text)
    if label:
        return f'<dl class="section"><dt>{label[1]}</dt><dd>{inline(label[2])}</dd></dl>'
    return f"<p>{inline(text)}</p>"


def rows(content, declarations):
    """A table.  A name that the declarations don't have is handed to Doxygen as a parameter: it then complains."""
    shown, stale = "", ""
    for name, text in content:
        known = declarations is None or not re.fullmatch(r"[A-Za-z_]\w*", name)
        if not known and not re.search(rf"\b{name}\b", declarations):
            stale += f" \\param {name} {inline(text)}"
        shown += f'<tr><td class="paramname">{escaped(name)}</td><td>{inline(text)}</td></tr>'
    return f'<table class="params">{shown}</table>{stale}'


# ---- The lines of a header

class Header:
    def __init__(self, path, lines):
        self.path = path
        self.lines = lines
        self.out = list(lines)
        self.scopes = self.walk()
        self.in_section = []  # the scope depths at which a section is open

    def walk(self):
        """For each line the scopes that it begins in, "scope" or "body", and whether a declaration is open."""
        states, stack, pending, macro = [], [], "", False
        for line in self.lines:
            states.append((tuple(stack), bool(pending.strip())))
            if macro or line.lstrip().startswith("#"):
                macro = line.endswith("\\")
                continue
            for c in re.sub(r"//.*", "", re.sub(r"\"(\\.|[^\"])*\"|'(\\.|[^'])'", "0", line)):
                if c == "{":
                    named = TYPE.match(pending) and "=" not in pending
                    stack.append("scope" if named or pending.strip() == "" else "body")
                    pending = pending if stack[-1] == "body" else ""
                elif c == "}" and stack:
                    body = stack.pop() == "body"
                    pending = pending if body and ("(" not in pending or "body" in stack) else ""
                elif c == ";" and "body" not in stack:
                    pending = ""
                else:
                    pending += c
            pending = re.sub(r"^\s*(public|protected|private)\s*:\s*$", "", pending) + " "
        return states + [((), False)]

    def convert(self):
        number, opened = 0, False
        while number < len(self.lines):
            stack, _ = self.scopes[number]
            private = self.lines[number].strip() == "private:"
            while self.in_section and self.in_section[-1] > len(stack) - private:
                self.in_section.pop()
                self.out[number - 1] = "/** @} */ " + self.out[number - 1]
            if "body" in stack:
                number += 1
            elif COMMENT.fullmatch(self.lines[number]):
                last = number
                while last < len(self.lines) and COMMENT.fullmatch(self.lines[last]):
                    last += 1
                if not opened:
                    self.place(number, last, self.comment(number, last).shown(), "\\file")
                elif SECTION.fullmatch(self.lines[number]):
                    self.section(number, last)
                else:
                    self.declaration(number, last)
                opened, number = True, last
            else:
                self.trailing(number)
                number += 1
        closing = " ".join("/** @} */" for _ in self.in_section)
        return "\n".join(self.out) + closing

    def comment(self, first, last):
        return Comment([COMMENT.fullmatch(line)[2] for line in self.lines[first:last]])

    def place(self, first, last, shown, command=""):
        """Puts a comment in the lines where it stood, and a command of its own in the blank one before it, so that
        what follows keeps its number."""
        at, code = first, False
        for line in range(first, last):
            self.out[line] = ""
        if command:
            shown.insert(1, (0, f'<p><code>\\#include "{escaped(self.path)}"</code></p>'))
        for offset, text in shown:
            code = code or text.startswith(("\\code", "\\verbatim"))
            at = first + offset if code else at
            self.out[at] += text if code else " " + text
            if text.endswith(("\\endcode", "\\endverbatim")):
                code, at = False, min(at + 1, last - 1)
        if command:
            self.out[first - 1] = f"/** {command}"
        else:
            self.out[first] = "/**" + self.out[first]
        self.out[last - 1] += " */"

    def section(self, first, last):
        """Begins a group of members.  The comments that stand alone in it are its description."""
        title = SECTION.fullmatch(self.lines[first])[1]
        depth = len(self.scopes[first][0])
        title, rest = first_sentence(title) if title.endswith(".") or ".  " in title else (title, "")
        more = [" " + rest] if rest else []
        more += [COMMENT.fullmatch(line)[2] for line in self.lines[first + 1:last]]
        description = [Comment(more).one_line()] if more else []
        for line in range(first, last):
            self.out[line] = ""
        closing = "/** @} */ " if self.in_section and self.in_section[-1] == depth else ""
        if not closing:
            self.in_section.append(depth)
        description += self.alone(last, depth)
        text = " ".join(description).replace("\\brief ", "<p>").replace(" \\details ", "</p>")
        name = title.rstrip(".")
        self.out[first - 1] = f"{closing}/** \\name {name[:1].upper()}{name[1:]}"
        self.out[first] = f"{text} */ /** @{{ */"

    def alone(self, number, depth):
        """The comments up to the next section that have a blank line behind them."""
        found = []
        while number < len(self.lines) and not SECTION.fullmatch(self.lines[number]):
            last = number
            while last < len(self.lines) and COMMENT.fullmatch(self.lines[last]):
                last += 1
            stack, _ = self.scopes[number]
            if last > number and "body" not in stack and len(stack) == depth and not self.lines[last].strip():
                found.append(self.comment(number, last).one_line())
            if len(stack) < depth:
                break
            number = max(last, number + 1)
        return found

    def declaration(self, first, last):
        if last >= len(self.lines) or not self.lines[last].strip():  # its section has it
            for line in range(first, last):
                self.out[line] = ""
            return
        starts, text = self.group(last)
        shown = self.comment(first, last).shown(text)
        if TYPE.match(self.lines[last]) and not self.scopes[last][0]:
            header = f'\\ref {os.path.basename(self.path)} "{self.path}"'
            shown.append((shown[-1][0], f'<dl class="section"><dt>Header</dt><dd>{header}</dd></dl>'))
        self.place(first, last, shown)
        copied = self.comment(first, last).one_line(text)
        for start in starts[1:]:
            self.out[start] = f"/** {copied} */ {self.lines[start]}"

    def group(self, number):
        """The lines in which a declaration of the group begins, and the text of all."""
        starts, text = [number], ""
        one = TYPE.match(self.lines[number])
        depth = len(self.scopes[number][0])
        while number < len(self.lines) and self.lines[number].strip():
            line = self.lines[number]
            stack, is_open = self.scopes[number]
            if len(stack) < depth or COMMENT.fullmatch(line) or line.lstrip().startswith(("#", "}")):
                break
            begins = len(stack) == depth and not is_open
            if begins and number > starts[0] and (one or re.search(r"=\s*delete|=\s*default|~|^\s*(friend|\w+:)", line)):
                break
            if begins and number > starts[0]:
                starts.append(number)
            text += " " + re.sub(r"//.*", "", line)
            number += 1
        return starts, text

    def trailing(self, number):
        line = self.lines[number]
        if re.fullmatch(r"\s*friend\b.*;", line):  # the library's own affair
            self.out[number] = self.out[number].removesuffix(line)
        found = TRAILING.match(line)
        if found and not re.match(r"\s*([#/}]|(class|struct) \w+;)", line):
            front = self.out[number].removesuffix(line)
            self.out[number] = f"{front}{found[1]}{found[2]}///< {inline(found[3])}"


def markdown(text):
    """Writes code between backticks so that Doxygen shows any character of it, and links to what has a page."""
    parts = re.split(r"(^```.*?^```$)", text, flags=re.S | re.M)
    for i in range(0, len(parts), 2):
        parts[i] = re.sub(r"\]\((?:\.\./)?examples/(\w+)\.cpp\)", r"](@ref \1.cpp)", parts[i])
        parts[i] = re.sub(r"\]\((?:\.\./)?\w+/(\w+\.h)\)", r"](@ref \1)", parts[i])
        parts[i] = re.sub(r"`([^`\n]+)`", lambda code: f"<code>{escaped(code[1])}</code>", parts[i])
    return "".join(parts)


def examples():
    """A page for each example: what it printed when `./dev docs` ran it, then its source."""
    for source in sorted(os.listdir("examples")):
        name, kind = os.path.splitext(source)
        if kind == ".cpp":
            picture = f"\\image html {name}.png\n" if os.path.exists(f"build/docs/output/{name}.png") else ""
            yield f"/** \\example {source}\n<p>It prints:</p>\n\\verbinclude {name}.txt\n{picture}*/\n"


def main():
    path = os.path.relpath(sys.argv[1])
    with open(path, encoding="utf-8") as file:
        text = file.read()
    shown = markdown(text) if path.endswith(".md") else Header(path, text.split("\n")).convert()
    if path == "tarnutil.h":  # the header that stands for the library has the examples behind it
        shown += "".join(examples())
    sys.stdout.write(shown)


main()
