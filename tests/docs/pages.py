"""Reads the pages: their blocks of commands, their links, and the anchors of their headings."""
import os
import re


class Block:
    """A block of code. kind is the word behind its fence, "" for one that is indented or has none."""

    def __init__(self, kind, name, line, lines):
        self.kind, self.name, self.line, self.lines = kind, name, line, lines


class Command:
    """A command of a block, and the output below it; output is None where a page shows commands alone."""

    def __init__(self, text, output, line, prompt="$"):
        self.text, self.output, self.line, self.prompt = text, output, line, prompt


def page_names(root):
    """All pages, relative to the root."""
    names = []
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(f for f in folders if not f.startswith(".") and f not in ("build", "dist"))
        names += [os.path.relpath(os.path.join(folder, f), root) for f in sorted(files) if f.endswith(".md")]
    return names


def read_lines(path):
    with open(path, encoding="utf-8") as page:
        return page.read().split("\n")


def blocks_of(lines):
    """The blocks of code: fenced ones, and those that are indented by four blanks behind an empty line."""
    blocks, at = [], 0
    while at < len(lines):
        fence = re.match(r"( *)(```+) *(\S*) *(.*)$", lines[at])
        if fence:
            indent, mark, kind, name = fence.groups()
            end = at + 1
            while lines[end].strip() != mark:
                end += 1
            content = [line[len(indent):] for line in lines[at + 1:end]]
            blocks.append(Block(kind, name, at + 1, content))
            at = end + 1
        elif is_indented(lines, at):
            end = at
            while end < len(lines) and (lines[end].startswith("    ") or not lines[end].strip()):
                end += 1
            content = [line.strip() for line in lines[at:end] if line.strip()]
            blocks.append(Block("", "", at + 1, content))
            at = end
        else:
            at += 1
    return blocks


def is_indented(lines, at):
    if not lines[at].startswith("    ") or (at and lines[at - 1].strip()):
        return False
    above = at - 1
    while above > 0 and (not lines[above].strip() or lines[above].startswith(" ")):
        above -= 1
    return not re.match(r"([-*]|\d+\.) ", lines[above])  # There it is a paragraph of a list.


PROMPTS = {"$ ": "$", "C:\\> ": "C:\\>"}


def commands_of(block):
    """Of a console block, the commands with their outputs; of one without a kind, a command a line."""
    if block.kind != "console":
        return [Command(re.split(r"\s{2,}", line)[0], None, block.line + i) for i, line in enumerate(block.lines)]
    commands = []
    for i, line in enumerate(block.lines):
        prompt = next((p for p in PROMPTS if line.startswith(p)), None)
        if prompt:
            commands.append(Command(line[len(prompt):], [], block.line + i + 1, PROMPTS[prompt]))
        elif line.startswith("> ") and commands and not commands[-1].output:
            commands[-1].text += "\n" + line[2:]
        elif commands:
            commands[-1].output.append(line)
        else:
            raise ValueError("line %d: output before any command" % (block.line + i + 1))
    return commands


def without_code(lines):
    """The lines, with code taken out of them; as many as there were."""
    text, inside = [], False
    for line in lines:
        if line.lstrip().startswith("```"):
            inside = not inside
            line = ""
        text.append("" if inside else re.sub(r"`[^`]*`", lambda code: "x" * len(code.group()), line))
    return text


def links_of(lines):
    """(line number, target) of every link and picture."""
    return [(number, target) for number, line in enumerate(without_code(lines), 1)
            for target in re.findall(r"\]\(([^)\s]+)\)", line)]


def anchors_of(lines):
    """The anchors that readers of Markdown give to headings."""
    anchors, inside = [], False
    for line in lines:
        inside ^= line.lstrip().startswith("```")
        heading = None if inside else re.match(r"#+ +(.*?)\s*$", line)
        if not heading:
            continue
        text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading.group(1)).lower()
        anchor = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
        count = sum(1 for known in anchors if known == anchor or re.fullmatch(re.escape(anchor) + r"-\d+", known))
        anchors.append("%s-%d" % (anchor, count) if count else anchor)
    return anchors


def table_rows(lines, first_heading):
    """The rows, as lists of cells, of the first table whose first column is headed so."""
    for at, line in enumerate(lines):
        cells = cells_of(line)
        if not cells or cells[0] != first_heading:
            continue
        rows = []
        for row in lines[at + 2:]:
            if not row.startswith("|"):
                break
            rows.append(cells_of(row))
        return rows
    return []


def cells_of(line):
    if not line.startswith("|"):
        return []
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line.strip().strip("|"))]
