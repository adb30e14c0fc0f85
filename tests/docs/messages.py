"""The messages about what is read: those of the sources, and those that a page explains. Two are the same when their
words are: numbers, names and tags, which differ each time, don't count."""
import glob
import os
import re

import pages

FOLDERS = ("nema", "attribute", "syntax", "compare")
PROGRESS = ("LOG_TRACE", "LOG_AUDIT", "LOG_REPORT", "LOG_THREAD")
CALL = re.compile(r"\b(Log_Message|Syntax_Note|Syntax_Warn|Syntax_Error|Refuse_Sequence|Report) *\(")
LISTING = "attribute/listing.cpp"  # Shows what was read, and reports nothing.
IGNORED = {"WARNING", "Warning", "ERROR", "gggg", "eeee"}


def words(text):
    """What a message is recognised by."""
    text = re.sub(r"\\x[0-9A-F]{2}|\\[tn]|%[-0-9.*l]*[a-zA-Z]", " ", text)
    return tuple(word for word in re.findall(r"[A-Za-z]{2,}", text) if word not in IGNORED)


def of_page(lines):
    """The texts in the first column of the page's tables."""
    found = []
    for line in lines:
        cells = pages.cells_of(line)
        if cells:
            found += re.findall(r"`([^`]+)`", cells[0])
    return found


def of_sources(root):
    shown = []
    for folder in FOLDERS:
        for path in sorted(glob.glob(os.path.join(root, folder, "*.cpp"))):
            if path.endswith(LISTING):
                continue
            with open(path) as file:
                shown += of_source(file.read())
    return shown


def of_source(text):
    found = [literal(entry) for table in re.findall(r"\bformats\[\] = \{(.*?)\};", text, re.S)
             for entry in table.split('",')]
    for call in CALL.finditer(text):
        arguments = arguments_at(text, call.end())
        if any(kind in argument for argument in arguments[:2] for kind in PROGRESS):
            continue
        formats = [literal(argument) for argument in arguments if '"' in argument]
        if formats and words(formats[0]):
            found.append(formats[0])
    return found


def literal(argument):
    """The string literals of an argument, joined; macros between them are colours and tags."""
    return " ".join(re.findall(r'"((?:[^"\\]|\\.)*)"?', argument))


def arguments_at(text, start):
    """The arguments of a call, from behind its bracket."""
    arguments, depth, at, begin = [], 0, start, start
    while at < len(text):
        if text[at] == '"':
            at = re.compile(r'"(?:[^"\\]|\\.)*"').match(text, at).end()
            continue
        if text[at] in "([{":
            depth += 1
        elif text[at] in ")]}":
            depth -= 1
            if depth < 0:
                break
        elif text[at] == "," and not depth:
            arguments.append(text[begin:at])
            begin = at + 1
        at += 1
    return arguments + [text[begin:at]]
