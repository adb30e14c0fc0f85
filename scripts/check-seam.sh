#!/usr/bin/env bash
# Holds the architecture in place. Fails, naming file and line, when
#  - a header or macro of an operating system stands in a C++ source outside platform/ (tests/platform/ may use both);
#  - a folder includes one that stands above it;
#  - a text bears a word that doesn't belong into the sources.
# Build files may ask for the system, so only C++ sources are searched for it.
set -eu

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
cd "$root"

# Headers that the language itself brings; any other in angle brackets is taken as a system's.
standard="assert ctype errno fenv float inttypes limits locale math setjmp signal stdarg stdbool stddef stdint stdio
  stdlib string time wchar wctype"
standard_cpp="algorithm any array atomic bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
  clocale cmath complex condition_variable csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime cwchar
  cwctype deque exception filesystem forward_list fstream functional future initializer_list iomanip ios iosfwd iostream
  istream iterator limits list locale map memory mutex new numeric optional ostream queue random ratio regex set
  shared_mutex sstream stack stdexcept streambuf string string_view system_error thread tuple type_traits typeindex
  typeinfo unordered_map unordered_set utility valarray variant vector"

# Each folder with all that it may include. A folder that is not listed may include every other one, and none of these may
# include it.
order="app: app view compare attribute nema tables syntax tools util platform
view: view compare attribute nema tables syntax tools util platform
compare: compare attribute nema tables syntax util platform
attribute: attribute nema tables util platform
nema: attribute nema tables util platform
tables: attribute nema tables syntax util platform
syntax: attribute nema tables syntax util platform
tools: tools util platform
util: util platform
platform: platform"

macros='_?WIN(32|64)|__WIN(32|64|NT)(__)?|_MSC_VER|__MINGW(32|64)__|__CYGWIN__|__(linux|unix)(__)?|__gnu_linux__'
macros="$macros|__APPLE__|__MACH__|__ANDROID__|__(Free|Net|Open)BSD__|TARGET_OS_[A-Z]+|_POSIX_[A-Z_]+|_GNU_SOURCE"
macros="$macros|__has_include"

# Words of other papers; what a source says must stand by itself. (The brackets keep this line from finding itself.)
words='specificatio[n]|\bparts? [0-9]+\.[0-9]|\.\./share[d]'

files () { # names...
  find . -path './.?*' -prune -o -path ./build -prune -o -path ./dist -prune -o -type f \( "$@" \) -print0 | sort -z
}
sources () { files -name '*.cpp' -o -name '*.cc' -o -name '*.c' -o -name '*.h' -o -name '*.hpp' -o -name '*.inc'; }

check_includes () {
  sources | xargs -0 awk -v standard="$standard" -v standard_cpp="$standard_cpp" -v order="$order" '
    BEGIN {
      count = split (standard, name)
      for (i = 1; i <= count; i++) is_standard[name[i] ".h"] = 1
      count = split (standard_cpp, name)
      for (i = 1; i <= count; i++) is_standard[name[i]] = 1
      count = split (order, line, "\n")
      for (i = 1; i <= count; i++) {
        fields = split (line[i], name, "[: ]+")
        for (j = 2; j <= fields; j++) may[name[1], name[j]] = 1
        has_rule[name[1]] = 1
      }
    }
    function violation (what) { printf "%s:%d: %s: %s\n", substr (FILENAME, 3), FNR, what, $0 }
    FNR == 1 {
      split (FILENAME, path, "/")
      folder = path[3] == "" ? "" : path[2]
      behind_seam = folder == "platform" || FILENAME ~ /^\.\/tests\/platform\//
      in_tests = folder == "tests" || folder == "bench"
    }
    !/^[ \t]*(\/\*.*\*\/)?[ \t]*#[ \t]*(include|import)/ { next }
    {
      rest = $0
      sub (/^[^#]*#[ \t]*[a-z_]+[ \t]*/, "", rest)
      kind = substr (rest, 1, 1)
      header = substr (rest, 2)
      sub (/[>"].*/, "", header)
    }
    kind != "<" && kind != "\"" { violation ("include that names no file"); next }
    kind == "<" && !behind_seam && !(header in is_standard) && !(in_tests && header ~ /^g(test|mock)\//) {
      violation ("system header outside platform/")
    }
    kind == "\"" {
      split (header, path, "/")
      target = path[2] == "" ? "" : path[1]
      if (target == "") violation ("include that is not written from the root")
      else if (header ~ /^platform\/.*\// && !behind_seam) violation ("private header of a back end")
      else if (folder in has_rule && !((folder, target) in may)) violation ("folder that " folder "/ may not know")
    }'
}

check_macros () {
  sources | grep -zvE '^\./(tests/)?platform/' | xargs -0r grep -nHE "(^|[^A-Za-z0-9_])($macros)([^A-Za-z0-9_]|\$)" |
    sed -E 's,^\./([^:]*:[0-9]+:),\1 system macro outside platform/: ,' || true
}

# Texts between quotes are the program's or DICOM's own, and left out.
check_words () {
  files -name '*.cpp' -o -name '*.h' -o -name '*.md' -o -name '*.cmake' -o -name CMakeLists.txt -o -name '*.sh' \
    -o -name '*.rc' -o -name '*.manifest' |
    xargs -0 awk '{ gsub (/"([^"\\]|\\.)*"/, "\"\""); printf "%s:%d: word out of place: %s\n", substr (FILENAME, 3), FNR, $0 }' |
    grep -iE "^[^:]*:[0-9]+: word out of place: .*($words)" || true
}

found=$(check_includes; check_macros; check_words)
[ -z "$found" ] || { printf '%s\n' "$found"; exit 1; }
