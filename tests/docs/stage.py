"""Where commands of the pages run: an installed program, a home and a copy of what a checkout has, all of them the
test's own. The user's logs in /tmp are left alone: the installed copy of the program has another default scratch
directory, whose name is as long."""
import glob
import os
import re
import secrets
import shutil
import subprocess
import tempfile

from pages import Command

SCRATCH = b"/tmp/tagwright-"
MARK = "\x1e"


class Stage:
    def __init__(self, root, program, build):
        self.root, self.build = root, build
        self.folder = tempfile.mkdtemp(prefix="docs-", dir="/var/tmp")
        self.scratch = "/tmp/d%s-" % secrets.token_hex(4)
        self.usr = os.path.join(self.folder, "usr")
        self.install(program)

    def install(self, program):
        share = os.path.join(self.usr, "share", "tagwright")
        os.makedirs(os.path.join(self.usr, "bin"))
        os.makedirs(share)
        for folder in ("DICOM Tables", "Icons"):
            os.symlink(os.path.join(self.root, folder), os.path.join(share, folder))
        shutil.copy(os.path.join(self.root, "install", "Tagwright.ini"), share)

        with open(program, "rb") as file:
            content = file.read()
        if content.count(SCRATCH) != 1 or len(self.scratch) != len(SCRATCH):
            raise RuntimeError("the program's default scratch directory is not where it was")
        self.program = os.path.join(self.usr, "bin", "tagwright")
        with open(self.program, "wb") as file:
            file.write(content.replace(SCRATCH, self.scratch.encode()))
        os.chmod(self.program, 0o755)
        display = os.path.join(os.path.dirname(program), "tagwright_display.so")
        os.makedirs(os.path.join(self.usr, "lib", "tagwright"))
        os.symlink(os.path.abspath(display), os.path.join(self.usr, "lib", "tagwright", os.path.basename(display)))

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        self.drop_logs()

    def drop_logs(self):
        """Those of this user, and what pages put into the directory of the user that they show."""
        for folder in glob.glob(self.scratch + "*"):
            shutil.rmtree(folder, ignore_errors=True)

    def begin_page(self, page):
        """Makes a home and a checkout for the commands of a page, and drops the logs of the page before."""
        self.drop_logs()
        place = os.path.join(self.folder, page.replace("/", "-"))
        self.home = os.path.join(place, "home")
        self.checkout = os.path.join(self.home, "tagwright")
        os.makedirs(os.path.join(self.checkout, "build", "run"))
        for folder in ("docs", "examples", "install"):
            shutil.copytree(os.path.join(self.root, folder), os.path.join(self.checkout, folder))
        for folder in ("DICOM Tables", "packaging"):
            os.symlink(os.path.join(self.root, folder), os.path.join(self.checkout, folder))
        os.symlink(self.build, os.path.join(self.checkout, "build", "native"))
        self.stand_in_for_the_build()

    def stand_in_for_the_build(self):
        """run.sh itself runs; what it installs and builds is there already."""
        self.tools = os.path.join(os.path.dirname(self.home), "tools")
        os.makedirs(self.tools)
        os.makedirs(os.path.join(self.checkout, "scripts"))
        for path in (os.path.join(self.tools, "cmake"), os.path.join(self.checkout, "scripts", "install-packages.sh")):
            write(path, "#!/bin/sh\n", 0o755)
        with open(os.path.join(self.root, "run.sh")) as script:
            write(os.path.join(self.checkout, "run.sh"), self.to_stage(script.read()), 0o755)
        os.symlink(self.program, os.path.join(self.checkout, "build", "run", "tagwright"))

    def to_stage(self, text):
        return text.replace(SCRATCH.decode(), self.scratch)

    def from_stage(self, text):
        """What was printed, with the paths that a reader would see."""
        for here, there in ((self.scratch, SCRATCH.decode()), (self.checkout, "/home/you/tagwright"),
                            (self.home, "/home/you"), (self.usr, "/usr"), (self.root, "/home/you/tagwright")):
            text = text.replace(here, there)
        return text

    def file_command(self, name, lines):
        """A command that puts a file there which a page shows; ~ is the home, other names are of the checkout."""
        path = os.path.join(self.home, name[2:]) if name.startswith("~/") else os.path.join(self.checkout, name)
        kept = os.path.join(self.tools, "file-" + re.sub(r"\W", "-", name))
        write(kept, self.to_stage("\n".join(lines) + "\n"), 0o755 if lines[0].startswith("#!") else 0o644)
        return Command("mkdir -p '%s'; cp '%s' '%s'" % (os.path.dirname(path), kept, path), [], 0)

    def run(self, commands):
        """(output lines, status) of each command; all of them run in one shell."""
        script = "cd \"$CHECKOUT\"; status=0\n"
        for i, command in enumerate(commands):
            path = os.path.join(self.tools, "command-%d" % i)
            write(path, self.to_stage(command.text) + "\n")
            script += "(exit $status); . '%s' </dev/null; status=$?; printf '\\n%s%%d\\n' $status\n" % (path, MARK)
        environment = {"HOME": self.home, "CHECKOUT": self.checkout, "LC_ALL": "C.UTF-8", "USER": "you", "TERM": "dumb",
                       "PATH": ":".join([self.tools, os.path.dirname(self.program), os.environ["PATH"]])}
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                environment[name] = os.environ[name]
        done = subprocess.run(["bash", "-c", script], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, env=environment, timeout=120)
        pieces = re.split("\n%s(\\d+)\n" % MARK, done.stdout.decode("utf-8", "replace"))
        outputs = [self.from_stage(piece) for piece in pieces[:-1:2]]
        return [(output.rstrip("\n").split("\n") if output.strip("\n") else [], int(status))
                for output, status in zip(outputs, pieces[1::2])]


def write(path, text, mode=0o644):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    os.chmod(path, mode)


# --- comparing -------------------------------------------------------------

# What differs from day to day, machine to machine and build to build.
VARIABLE = [
    (r"/tmp/tagwright-(\d+|UID)", "/tmp/tagwright-UID"),
    (r"(?<![0-9A-Za-z])\d\d[A-Z][a-z]{2}\d{4}(?![0-9A-Za-z])", "DAY"),    # Also behind the underscore of a name.
    (r"\b\d\d [A-Z][a-z]{2} \d{4} \d\d:\d\d", "MINUTE"),
    (r"\b[A-Z][a-z]{2} [ \d]\d \d{4}\b", "BUILT"),
    (r"Computer Name:  .*", "Computer Name:  NAME"),
    (r"version \d+\.\d+ \(Build \d+\)", "version SYSTEM"),
    (r"Processor:      .*", "Processor:      KIND"),
    (r"\((x11|wayland|No available video device)[^)]*\)", "(WHY)"),
    (r"( line:| Line:)\d+", r"\1N"),
]


def plain(line):
    for pattern, replacement in VARIABLE:
        line = re.sub(pattern, replacement, line)
    return line.rstrip()


def matches(expected, actual):
    """Whether the output is the one that a page shows, where a line "..." stands for any lines."""
    pattern = "".join("(?:.*\n)*?" if line.strip() == "..." else re.escape(plain(line)) + "\n" for line in expected)
    return re.fullmatch(pattern, "".join(plain(line) + "\n" for line in actual)) is not None
