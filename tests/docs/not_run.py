"""Commands of the pages that the test can't run, each with the reason, and with what is checked of them instead."""
import json
import os
import re


class Facts:
    """What such commands may name: presets, targets, scripts, packages, options."""

    def __init__(self, root, usage):
        self.root = root
        self.options = sorted(set(re.findall(r"\[(-\w)", usage)))
        self.version = re.search(r"\(version: (.*?)\)", usage).group(1)
        number, revision = re.fullmatch(r"(\d+\.\d+) rev-(\d+)", self.version).groups()
        name = self.version.replace(" ", "-")
        self.packages = ["Tagwright-%s-setup.exe" % name, "Tagwright-%s-windows.zip" % name,
                         "tagwright_%s.%s-1_amd64.deb" % (number, revision), "tagwright-%s-linux-x86_64.tar.gz" % name]
        with open(os.path.join(root, "CMakePresets.json")) as file:
            presets = json.load(file)
        self.presets = {kind: [p["name"] for p in presets[kind + "Presets"]] for kind in ("configure", "build", "test")}
        self.cmake = ""
        for folder, folders, names in os.walk(root):
            folders[:] = [f for f in folders if f not in ("build", "dist", ".git")]
            for name in names:
                if name == "CMakeLists.txt" or name.endswith(".cmake"):
                    with open(os.path.join(folder, name)) as file:
                        self.cmake += file.read()

    def has_target(self, name):
        pattern = r"add_(executable|custom_target) \(%s\b" % re.escape(name)
        return self.has_test_folder(name) or re.search(pattern, self.cmake)

    def has_test_folder(self, name):
        return name.endswith("_test") and os.path.isdir(os.path.join(self.root, "tests", name[:-5]))


# --- checks: none when all is well, or what is wrong -----------------------

def check_cmake(facts, words):
    kind = {"cmake": "build" if "--build" in words else "configure", "ctest": "test"}[words[0]]
    for option, value in zip(words, words[1:]):
        if option == "--preset" and value not in facts.presets[kind]:
            return "no %s preset %s" % (kind, value)
        if option == "--target" and not facts.has_target(value):
            return "no target " + value
        if option.startswith("-D") and re.match(r"-D(TAGWRIGHT_\w+)", option).group(1) not in facts.cmake:
            return "no option " + option
    return check_define(facts, words[-1])


def check_define(facts, word):
    define = re.match(r"-D(TAGWRIGHT_\w+)=", word)
    return None if not define or define.group(1) in facts.cmake else "no option " + word


def check_script(facts, words):
    path = os.path.join(facts.root, words[0])
    if not os.access(path, os.X_OK):
        return "no script " + words[0]
    with open(path) as file:
        text = file.read()
    unknown = [word for word in words[1:] if re.match(r"-|[a-z]", word) and word not in text]
    return "%s doesn't know %s" % (words[0], unknown[0]) if unknown else None


def check_packages(facts, words):
    for word in words:
        if re.search(r"\d.*\.(exe|zip|deb|gz)$", word) and os.path.basename(word) not in facts.packages:
            return "no package " + word
    return None


def check_folder(facts, words):
    return check_packages(facts, [words[0].split("/")[0] + ".tar.gz"])


def check_program(facts, words):
    unknown = [word for word in words if re.fullmatch(r"-\w", word) and word not in facts.options]
    return "no option " + unknown[0] if unknown else None


def check_test_program(facts, words):
    target = os.path.basename(words[0])
    return None if facts.has_target(target) else "no target " + target


def check_man(facts, words):
    path = os.path.join(facts.root, "packaging", "%s.1" % words[-1])
    return None if os.path.isfile(path) else "no page " + path


# --- the table -------------------------------------------------------------

NOT_RUN = [
    # pattern of the command's beginning, the reason, the check
    (r"(sudo )?(apt|apt-get|dpkg) ", "installs or removes packages", check_packages),
    (r"tar xzf ", "unpacks a package", check_packages),
    (r"cmake |ctest ", "configures, builds or tests a whole tree", check_cmake),
    (r"\./(test|bench)\.sh|scripts/|tests/\w+/", "installs packages, builds, or takes long", check_script),
    (r"build/\w+/tests/(\w+_test|gallery$)|build/fuzz/", "is a test of its own, or opens a window", check_test_program),
    (r"(\w+=\S+ )*wine ", "needs Wine", check_program),
    (r"(\./run\.sh|tagwright)( -[xy] \S+ \S+)*( &)?$|tagwright-open ", "opens a window", check_program),
    (r"tagwright-[\d.]+\S*/tagwright", "is the program of a package", check_folder),
    (r"man ", "needs the installed page", check_man),
]
WINDOWS = ("runs on Windows", check_program)


def reason_not_to_run(command):
    """(reason, check, pattern), or none when the command is run."""
    if command.prompt != "$":
        return WINDOWS + ("",)
    for pattern, reason, check in NOT_RUN:
        if re.match(pattern, command.text):
            return reason, check, pattern
    return None


def check_unrun(command, check, facts):
    """What is wrong with a command that isn't run, or none. Each command of a chain is looked at."""
    for piece in re.split(r"\s+&&\s+", command.text):
        words = piece.split()
        found = None if command.prompt != "$" else next((c for p, _, c in NOT_RUN if re.match(p, piece)), None)
        problem = (found or check) (facts, words)
        if problem:
            return problem
    return None
