#!/usr/bin/env python3
"""Counts how the house is built and fails where it passes a limit.

    scripts/measures.py

Functions over 60 lines, circles of files and folders, arrows that run back up (the order of the rooms is
in ROOMS below, that of a room's folders in docs/architecture.md), tests as a share of all code, longest
files. Code is C++; blank lines and comments are left out where lines of code are counted.
"""

import collections
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

LONGEST_FUNCTION = 60
LONGEST_FILE = 500        # of the product; lines (its longest is the table of texts)
LONGEST_TEST = 600
TEST_SHARE = (0.25, 0.35)  # of product and tests

# From the bottom; a room includes itself and those named behind it.
ROOMS = {
    "platform": (),
    "core": ("platform",),
    "coordsys": ("core", "platform"),
    "gnss": ("coordsys", "core", "platform"),
    "tls": ("core", "platform"),
    "roads": ("core", "platform"),
    "exchange": ("roads", "core", "platform"),
    "modules": ("tls", "coordsys", "core", "platform"),
    "app/workflow": ("exchange", "roads", "gnss", "tls", "coordsys", "core", "platform"),
    "app/cli": ("app/workflow", "exchange", "roads", "gnss", "tls", "coordsys", "core", "platform"),
    "app": ("app/cli", "app/workflow", "exchange", "roads", "gnss", "tls", "coordsys", "core", "platform"),
}
CONTROL = {"if", "for", "while", "switch", "catch", "do", "else", "return"}


def tracked_sources():
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.h", "*.cpp"], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split()
    return {name: (ROOT / name).read_text(encoding="utf-8") for name in names if (ROOT / name).exists()}


LITERALS = re.compile(r'R"(\w*)\(.*?\)\1"|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\'|//[^\n]*|/\*.*?\*/', re.S)


def without_literals(text, keep_strings=False):
    """Comments become blanks, strings too unless they are kept; the lines stay where they are."""
    def blank(match):
        found = match.group(0)
        if keep_strings and not found.startswith("/"):
            return found
        return '""' + "\n" * found.count("\n") if not found.startswith("/") else "\n" * found.count("\n")
    # An apostrophe between digits separates them.
    return LITERALS.sub(blank, re.sub(r"(?<=\d)'(?=\d)", "", text))


def code_lines(text):
    return sum(1 for line in without_literals(text, keep_strings=True).splitlines() if line.strip())


# --- functions -----------------------------------------------------------------------------------

def scope_of(head, enclosing, after_function):
    """What an opening brace begins, told by the text before it."""
    if enclosing in ("function", "data"):
        return enclosing
    words = re.sub(r"^\s*template\s*<.*?>\s*(?=struct|class|requires|inline|constexpr)", "", head.strip(), flags=re.S)
    if re.match(r"(inline\s+)?namespace\b|extern\s*\"", words):
        return "scope"
    if "(" not in words and re.match(r"(typedef\s+)?(class|struct|union|enum)\b", words):
        return "scope"
    if re.match(r"(class|struct|union)\b[^()]*$", words):
        return "scope"
    if after_function and (not words or words.startswith(",")):
        return "function"  # the body behind a list of initialisers in braces
    if "(" in words and not re.search(r"=\s*$", words):
        return "function"
    return "data"


def functions_of(text):
    """(name, first line, number of lines) of each function, from its signature to its closing brace."""
    clean = re.sub(r"(?m)^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "", without_literals(text))
    scopes, head_begin, after_function, open_function = [], 0, False, None
    for match in re.finditer(r"[{};]", clean):
        at, mark = match.start(), match.group(0)
        enclosing = scopes[-1] if scopes else "scope"
        if mark == "{":
            head = clean[head_begin:at]
            scope = scope_of(head, enclosing, after_function)
            if scope == "function" and enclosing == "scope":
                open_function = head_begin + len(head) - len(head.lstrip()), head
            scopes.append(scope)
        elif mark == "}" and scopes:
            closed = scopes.pop()
            leaves = closed == "function" and (not scopes or scopes[-1] == "scope")
            if leaves:
                begin, head = open_function
                name = re.findall(r"([\w:~]+(?:\s*[-+*/=<>!|&\[\]]+)?)\s*\(", head)
                yield (name[0] if name else "?", clean.count("\n", 0, begin) + 1,
                       clean.count("\n", begin, at) + 1)
            after_function = leaves
        if mark != "{" and mark != "}":
            after_function = False
        head_begin = at + 1


# --- arrows --------------------------------------------------------------------------------------

def includes_of(sources):
    graph = collections.defaultdict(set)
    for name, text in sources.items():
        for wanted in re.findall(r'(?m)^\s*#\s*include\s+"([^"]+)"', text):
            beside = str(pathlib.PurePosixPath(name).parent / wanted)
            found = wanted if wanted in sources else beside if beside in sources else None
            if found:
                graph[name].add(found)
    return graph


def circles_of(graph):
    """The strongly connected parts with more than one member (Tarjan's, without recursion)."""
    index, low, on_stack, stack, circles = {}, {}, set(), [], []
    for root in sorted(graph):
        if root in index:
            continue
        work = [(root, iter(sorted(graph[root])))]
        index[root] = low[root] = len(index)
        stack.append(root)
        on_stack.add(root)
        while work:
            node, targets = work[-1]
            for target in targets:
                if target not in index:
                    index[target] = low[target] = len(index)
                    stack.append(target)
                    on_stack.add(target)
                    work.append((target, iter(sorted(graph.get(target, ())))))
                    break
                if target in on_stack:
                    low[node] = min(low[node], index[target])
            else:
                work.pop()
                if work:
                    low[work[-1][0]] = min(low[work[-1][0]], low[node])
                if low[node] == index[node]:
                    part = []
                    while not part or part[-1] != node:
                        part.append(stack.pop())
                        on_stack.discard(part[-1])
                    if len(part) > 1:
                        circles.append(sorted(part))
    return circles


def room_of(name):
    for room in ("app/workflow", "app/cli"):
        if name.startswith(room + "/"):
            return room
    return name.split("/")[0]


def folder_orders():
    """Room to its folders from the bottom, as the tables "The folders of ROOM/" have them."""
    text = (ROOT / "docs" / "architecture.md").read_text(encoding="utf-8")
    orders = {}
    for room, section in re.findall(r"(?ms)^## The folders of (\S+)/\n(.*?)(?=^## |\Z)", text):
        rows = re.findall(r"(?m)^\| (\S+)/ \|", section)
        orders[room] = [room if row == room else f"{room}/{row}" for row in rows]
    return orders


def folder_of(name):
    return str(pathlib.PurePosixPath(name).parent)


def back_arrows(graph, orders):
    for source, targets in sorted(graph.items()):
        room = room_of(source)
        for target in sorted(targets):
            above = room_of(target)
            if room in ROOMS and above in ROOMS:
                if above != room and above not in ROOMS[room]:
                    yield source, target
                order = orders.get(room, [])
                ends = [folder_of(source), folder_of(target)]
                if above == room and all(end in order for end in ends) and order.index(ends[1]) > order.index(ends[0]):
                    yield source, target
            elif room in ROOMS and above in ("tests", "bench", "fuzz", "examples"):
                yield source, target


def unlisted_folders(sources, orders):
    folders = {folder_of(name) for name in sources}
    for room, order in sorted(orders.items()):
        inside = {folder for folder in folders if folder == room or folder.startswith(room + "/")}
        yield from sorted(inside.symmetric_difference(order))


# --- the report ----------------------------------------------------------------------------------

class Report:
    def __init__(self):
        self.passed = True

    def line(self, what, value, limit, sound, details=()):
        self.passed &= sound
        print(f"{what:<44}{value:>9}   {limit:<22}{'' if sound else 'OVER THE LIMIT'}".rstrip())
        for detail in details:
            print("    " + detail)


def measure_functions(sources, report):
    lengths = [(lines, name, path, first) for path, text in sources.items()
               for name, first, lines in functions_of(text)]
    product = sorted(length[0] for length in lengths if room_of(length[2]) in ROOMS)
    long = sorted((length for length in lengths if length[0] > LONGEST_FUNCTION), reverse=True)
    report.line(f"functions over {LONGEST_FUNCTION} lines", len(long), "0", not long,
                [f"{path}:{first} {name}: {lines} lines" for lines, name, path, first in long])
    print(f"    {len(product)} functions of the product: median {product[len(product) // 2]} lines, "
          f"p90 {product[len(product) * 9 // 10]}, longest {product[-1]}")


def measure_arrows(sources, report):
    graph, orders = includes_of(sources), folder_orders()
    files = circles_of(graph)
    report.line("circles of files", len(files), "0", not files, [" ".join(circle) for circle in files])
    folders = collections.defaultdict(set)
    for source, targets in graph.items():
        folders[folder_of(source)] |= {folder_of(target) for target in targets} - {folder_of(source)}
    circles = circles_of(folders)
    report.line("circles of folders", len(circles), "0", not circles, [" ".join(circle) for circle in circles])
    back = list(back_arrows(graph, orders))
    report.line("arrows back up", len(back), "0", not back, [f"{source} -> {target}" for source, target in back])
    unlisted = list(unlisted_folders(sources, orders))
    report.line("folders not as docs/architecture.md has them", len(unlisted), "0", not unlisted, unlisted)


def measure_sizes(sources, report):
    code = collections.Counter()
    for name, text in sources.items():
        code[room_of(name)] += code_lines(text)
    product, tests = sum(code[room] for room in ROOMS), code["tests"]
    share = tests / (product + tests)
    report.line("tests of product and tests, lines of code", f"{share:.1%}", "25 to 35 %",
                TEST_SHARE[0] <= share <= TEST_SHARE[1])
    print("    " + ", ".join(f"{room} {code[room]}" for room in sorted(code, key=code.get, reverse=True)))

    lines = {name: text.count("\n") for name, text in sources.items() if not text.startswith("// Built by ")}
    for what, limit, of in (("product", LONGEST_FILE, lambda name: room_of(name) in ROOMS),
                            ("tests", LONGEST_TEST, lambda name: room_of(name) == "tests")):
        longest = sorted((name for name in lines if of(name)), key=lines.get, reverse=True)[:5]
        report.line(f"longest file of the {what}, lines", lines[longest[0]], f"at most {limit}",
                    lines[longest[0]] <= limit, [f"{name} {lines[name]}" for name in longest])


def main():
    sources, report = tracked_sources(), Report()
    measure_functions(sources, report)
    measure_arrows(sources, report)
    measure_sizes(sources, report)
    sys.exit(0 if report.passed else 1)


if __name__ == "__main__":
    main()
