#!/usr/bin/env python3
"""Holds the pages to the program: docs_test.py PROGRAM BUILD. Runs their commands and compares what is printed, follows
their links, and compares options, exit statuses and messages with the man page, the program and its sources.

docs_test.py PROGRAM BUILD --update PAGE... writes into the pages what their commands print where it isn't what they
show; look at it before it is committed."""
import os
import re
import subprocess
import sys
import unittest

import messages
import pages
from not_run import NOT_RUN, Facts, check_unrun, reason_not_to_run
from stage import Stage, matches

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
INDEX = "docs/README.md"
MANUAL = "packaging/tagwright.1"
FILE_KINDS = ("ini", "bash", "table")   # Blocks that are files, which commands below them may use.
SYNTAX_KINDS = ("synopsis",)            # Neither files nor commands.

stage = None
facts = None
lines_of = {name: pages.read_lines(os.path.join(ROOT, name)) for name in pages.page_names(ROOT)}


def setUpModule():
    global stage, facts
    stage = Stage(ROOT, sys.argv[1], os.path.abspath(sys.argv[2]))
    facts = Facts(ROOT, usage())


def tearDownModule():
    stage.close()


def usage():
    done = subprocess.run([sys.argv[1], "-q"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return done.stdout.decode()


class Commands(unittest.TestCase):
    """One test for each page, made below."""

    used = set()

    def run_page(self, name):
        steps = []
        for block in pages.blocks_of(lines_of[name]):
            where = "%s:%d" % (name, block.line)
            if block.kind in FILE_KINDS:
                steps.append((where, None, block))
            elif block.kind not in SYNTAX_KINDS:
                self.assertIn(block.kind, ("console", ""), where + ": neither commands nor a file")
                steps += [("%s:%d" % (name, command.line), command, block) for command in pages.commands_of(block)]
        run = [step for step in steps if self.is_run(step)]
        if run:
            self.run_steps(name, run)

    def is_run(self, step):
        where, command, _ = step
        reason = reason_not_to_run(command) if command else None
        if not reason:
            return True
        Commands.used.add(reason[2])
        self.assertIsNone(check_unrun(command, reason[1], facts), "%s: %s" % (where, command.text))
        return False

    def run_steps(self, name, steps):
        stage.begin_page(name)
        commands = [command or stage.file_command(block.name, block.lines) for _, command, block in steps]
        results = stage.run(commands)
        self.assertEqual(len(results), len(commands), name + ": the shell ended early")
        for (where, command, block), (output, status) in zip(steps, results):
            if not command or command.output is None:
                self.assertLess(status, 126, "%s: %s" % (where, "\n".join(output)))
                continue
            self.assertTrue(matches(command.output, output),
                            "%s: %s\nshould print\n%s\nbut prints\n%s" %
                            (where, command.text, "\n".join(command.output), "\n".join(output)))


def make_page_test(name):
    return lambda self: self.run_page(name)


for page in lines_of:
    setattr(Commands, "test_" + re.sub(r"\W", "_", page), make_page_test(page))


class Unrun(unittest.TestCase):
    def test_zz_no_entry_of_the_table_is_stale(self):
        for pattern, reason, _ in NOT_RUN:
            self.assertIn(pattern, Commands.used, "no page has such a command any more: " + reason)


class Output(unittest.TestCase):
    def test_another_day_user_and_machine_are_no_difference(self):
        for shown, printed in (("--- /tmp/tagwright-1000/Tagwright_21Nov2026.dat ---", "--- /tmp/tagwright-0/Tagwright_03Dec2031.dat ---"),
                               ("TRACE:   ==== (21 Nov 2026 21:14) ====", "TRACE:   ==== (03 Dec 2031 07:05) ===="),
                               ("TRACE:   Compile:      Nov 21 2026", "TRACE:   Compile:      Dec  3 2031"),
                               ("TRACE:   Computer Name:  vm", "TRACE:   Computer Name:  other")):
            self.assertTrue(matches([shown], [printed]), printed)
        self.assertFalse(matches(["Found 12 differences"], ["Found 13 differences"]))
        self.assertFalse(matches(["Tagwright_21Nov2026.dat"], ["Tagwright_21Nov2026.txt"]))


class Links(unittest.TestCase):
    def target(self, page, link):
        """(path relative to the root, anchor) of a link that stays inside, or none."""
        if re.match(r"[a-z]+:", link):
            return None
        path, _, anchor = link.partition("#")
        path = path.replace("%20", " ")
        return os.path.normpath(os.path.join(os.path.dirname(page), path)) if path else page, anchor

    def test_links_resolve(self):
        for page, lines in lines_of.items():
            for number, link in pages.links_of(lines):
                target = self.target(page, link)
                if not target:
                    continue
                where = "%s:%d: %s" % (page, number, link)
                self.assertTrue(os.path.exists(os.path.join(ROOT, target[0])), where)
                if target[1]:
                    self.assertIn(target[1], pages.anchors_of(lines_of[target[0]]), where)

    def test_every_file_of_docs_is_reached_from_its_index(self):
        reached, next_pages = set(), [INDEX]
        while next_pages:
            page = next_pages.pop()
            if page in reached:
                continue
            reached.add(page)
            if not page.startswith("docs/") or page not in lines_of:
                continue
            targets = [self.target(page, link) for _, link in pages.links_of(lines_of[page])]
            next_pages += [target[0] for target in targets if target]
        files = {os.path.relpath(os.path.join(folder, name), ROOT)
                 for folder, _, names in os.walk(os.path.join(ROOT, "docs")) for name in names}
        self.assertEqual(sorted(files - reached), [])

    def test_the_front_page_leads_on(self):
        targets = [link for _, link in pages.links_of(lines_of["README.md"])]
        for name in ("docs/README.md", "CONTRIBUTING.md", "CHANGELOG.md", "LICENSE"):
            self.assertIn(name, targets)


class Batch(unittest.TestCase):
    """docs/batch.md, the man page and the program say the same."""

    def setUp(self):
        self.page = lines_of["docs/batch.md"]
        self.manual = pages.read_lines(os.path.join(ROOT, MANUAL))

    def entries(self, section):
        """The tagged paragraphs of a section of the man page: (tag, text), without markup."""
        entries, inside, lines = [], False, iter(self.manual)
        for line in lines:
            if line.startswith(".SH"):
                inside = line[4:].strip('" ') == section
            elif inside and line == ".TP":
                entries.append([unmarked(next(lines)), ""])
            elif inside and entries and not line.startswith("."):
                entries[-1][1] = (entries[-1][1] + " " + unmarked(line)).strip()
        return [tuple(entry) for entry in entries]

    def rows(self, heading):
        return [(plain_cell(row[0]), " ".join(plain_cell(cell) for cell in row[1:]))
                for row in pages.table_rows(self.page, heading)]

    def test_options(self):
        rows = self.rows("option")
        self.assertEqual(self.entries("OPTIONS"), rows)
        self.assertEqual(sorted(o for tag, _ in rows for o in re.findall(r"-\w", tag)),
                         facts.options)

    def test_exit_statuses(self):
        rows = [(plain_cell(row[1]), plain_cell(row[0]))
                for row in pages.table_rows(self.page, "what happened")]
        self.assertTrue(rows)
        self.assertEqual(self.entries("EXIT STATUS"), rows)

    def test_synopsis_and_version(self):
        synopsis = [block for block in pages.blocks_of(self.page) if block.kind == "synopsis"]
        self.assertEqual(synopsis[0].lines, re.findall(r"^ (\w+ \[.*)$", usage(), re.M))
        self.assertIn(facts.version, self.manual[0] + self.manual[1] + self.manual[2])

    def test_man_page_is_well_formed(self):
        environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "MANWIDTH": "100", "HOME": "/nowhere"}
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", os.path.join(ROOT, MANUAL)],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment)
        self.assertEqual((done.stderr.decode(), done.returncode), ("", 0))
        self.assertIn("TAGWRIGHT(1)", done.stdout.decode())


def unmarked(line):
    line = re.sub(r"^\.(BR?I?|IR?|RB|RI|BI|IB) ", "", line)
    line = re.sub(r"\\f[BIRP]|\\&", "", line)
    for code, text in (("\\-", "-"), ("\\(aq", "'"), ("\\e", "\\"), ('"', ""), ("  ", " ")):
        line = line.replace(code, text)
    return line.strip()


def plain_cell(cell):
    cell = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", cell)
    return cell.replace("`", "").replace("**", "")


class Building(unittest.TestCase):
    """docs/building.md names all presets, options and groups of packages."""

    def names(self, heading):
        return sorted(name for row in pages.table_rows(lines_of["docs/building.md"], heading)
                      for name in re.findall(r"`([^`]+)`", row[0]))

    def test_presets(self):
        self.assertEqual(self.names("preset"), sorted(facts.presets["configure"]))

    def test_options(self):
        options = re.findall(r"^option \((\w+)", facts.cmake, re.M)
        self.assertEqual(self.names("option"), sorted(options + ["CMAKE_BUILD_TYPE"]))

    def test_groups(self):
        with open(os.path.join(ROOT, "scripts", "install-packages.sh")) as script:
            groups = re.search(r"\(groups: ([^)]*)\)", script.read()).group(1)
        self.assertEqual(self.names("group"), sorted(groups.split()))


class Limits(unittest.TestCase):
    """docs/limits.md tells the limits that the sources have, and so do other pages."""

    LIMITS = [
        ("2,147,483,647 bytes", "compare/file_reader.cpp", "FILE_SIZE_MOST = 0x7FFFFFFF;"),
        ("132 bytes", "compare/file_reader.cpp", "PREAMBLE_SIZE = 128;"),
        ("inside one another | 9 ", "attribute/sequence_cursor.h", "SEQUENCE_DEPTHS = 10;"),
        ("260 characters", "app/main_window.h", "DROP_NAME_LIMIT = 260;"),
        ("60 characters, 10 numbers or 16 bytes", "compare/attribute_comparison.h", "VALUE_TEXT_LENGTH = 62;"),
        ("179 characters", "view/result_view.h", "VIEW_DESCRIPTION = 180;"),
        ("| 100 | the program ends", "view/result_view.h", "VIEW_LEVELS = 100;"),
        ("ends with 3", "view/result_view.h", "FATAL_EXIT = 3;"),
        ("10,239 characters", "util/my_error_fct.h", "LOG_TEXT_SIZE = 10240;"),
        ("| 10,000 |", "tools/texts.h", "TEXT_LINES = 10000;"),
        ("19 characters", "compare/difference_list.h", "ROW_NAME_SIZE = 20;"),
        ("| 251 bytes | cut |", "tools/primitives.h", "DRAW_TEXT_LIMIT = 255;"),
        ("255 characters with its end", "app/configuration.h", "CONFIGURATION_LINE_LENGTH = 255;"),
        ("2047 bytes", "tables/definition_files.h", "DEFINITION_LINE_SIZE = 2048;"),
        ("250,000", "tables/definition_files.h", "DEFINITION_RECORDS = 250000;"),
        ("| 10,239 |", "tables/definition_files.h", "DEFINITION_INCLUDES = 10240;"),
        ("1,048 bytes", "tables/definition_files.h", "DEFINITION_NUMBERS_SIZE = 1048;"),
        ("as the name of a table | 64 bytes |", "attribute/NEMA_Tag_Complement.h", "CREATOR_NAME_LENGTH = 64;"),
        ("| 99 |", "tables/modality.h", "MODALITY_LIMIT = 100;"),
        ("-32,000 and 32,000", "app/start_up.cpp", "WINDOW_LIMIT = 32000;"),
        ("136 x 39 pixels", "app/start_up.cpp", "WINDOW_LEAST_WIDE = 136;"),
        ("narrower or lower than 30 pixels", "app/main_window.h", "LAYOUT_SMALLEST = 30;"),
    ]

    PRIVATE_TABLES = [
        ("first 64 bytes count", "attribute/NEMA_Tag_Complement.h", "CREATOR_NAME_LENGTH = 64;"),
    ]

    def hold(self, name, limits):
        page = " ".join("\n".join(lines_of[name]).split())
        for text, path, code in limits:
            source = " ".join(" ".join(pages.read_lines(os.path.join(ROOT, path))).split())
            self.assertIn(text, page)
            self.assertIn(code, source, path)

    def test_limits(self):
        self.hold("docs/limits.md", self.LIMITS)

    def test_private_tables(self):
        self.hold("docs/private-tables.md", self.PRIVATE_TABLES)


class Messages(unittest.TestCase):
    """docs/repairs.md explains the messages that reading a file can bring, all of them, and no others."""

    def setUp(self):
        self.page = {messages.words(cell): cell for cell in messages.of_page(lines_of["docs/repairs.md"])}
        self.sources = messages.of_sources(ROOT)

    def test_what_the_page_explains_is_in_the_sources(self):
        known = {messages.words(text) for text in self.sources}
        self.assertEqual([cell for words, cell in self.page.items() if words not in known], [])

    def test_the_page_explains_every_message(self):
        self.assertEqual([text for text in self.sources if messages.words(text) not in self.page], [])


# --- renewing outputs ------------------------------------------------------

def update(name):
    """Writes what the commands print into the page, where the page shows something else."""
    lines, shift = lines_of[name], 0
    steps = [(command, block) for block in pages.blocks_of(lines) if block.kind not in SYNTAX_KINDS
             for command in ([None] if block.kind in FILE_KINDS else pages.commands_of(block))]
    steps = [step for step in steps if not step[0] or not reason_not_to_run(step[0])]
    stage.begin_page(name)
    results = stage.run([command or stage.file_command(block.name, block.lines) for command, block in steps])
    for (command, _), (output, _) in zip(steps, results):
        if not command or command.output is None or matches(command.output, output):
            continue
        start = command.line + shift + command.text.count("\n")
        lines[start:start + len(command.output)] = [re.sub(r"/tmp/tagwright-\d+", "/tmp/tagwright-1000", line.rstrip())
                                                    for line in output]
        shift += len(output) - len(command.output)
    with open(os.path.join(ROOT, name), "w", encoding="utf-8") as file:
        file.write("\n".join(lines))


if __name__ == "__main__":
    if sys.argv[3:4] == ["--update"]:
        setUpModule()
        for page in sys.argv[4:]:
            update(page)
        tearDownModule()
        sys.exit(0)
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:], verbosity=1)
