#!/usr/bin/env python3
"""Rules of this tree that a machine can check. Each finding says what to do instead. Exit status 1 if there is any."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
INCLUDE_ROOTS = [ROOT / "libraries/src", ROOT / "projects/src", ROOT / "platform", ROOT / "tools", ROOT / "tests", ROOT / "bench"]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
COMMENT_OR_STRING = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.S)

# A room may name its own level and those below it.
LEVELS = {
    "libraries/src/misc": 0, "libraries/src/sync": 0, "libraries/src/streams": 0, "libraries/src/security": 0,
    "libraries/src/math": 1, "libraries/src/image": 1, "libraries/src/video": 1, "libraries/src/plugin": 1,
    "libraries/src/detection": 2,
    "projects/src/BaseClasses": 3,
    "projects/src/trackers": 4, "projects/src/Meridane": 4,
    "projects/src/application": 5,
    "tools": 6,
}
# platform/ is a stranger's house: only its C interface may be named, and only by these.
PLATFORM_USERS = ("platform/", "tools/", "tests/", "bench/", "fuzz/", "projects/src/application/")


def sources():
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", "*.h", "*.cpp"],
                            cwd=ROOT, check=True, capture_output=True).stdout.decode().split("\0")
    return sorted(ROOT / name for name in listed if name and (ROOT / name).exists())


def resolve(include, source):
    for base in [source.parent, *INCLUDE_ROOTS]:
        if (base / include).is_file():
            return (base / include).resolve()
    return None


def room_of(path):
    name = path.relative_to(ROOT).as_posix()
    return max((room for room in LEVELS if name.startswith(room + "/")), key=len, default=None)


def cycles(graph):
    """One path for each include cycle, by depth-first search."""
    found, state = [], {}

    def visit(node, trail):
        state[node] = "open"
        for target in graph.get(node, ()):
            if state.get(target) == "open":
                found.append(trail[trail.index(target):] + [target])
            elif target not in state:
                visit(target, trail + [target])
        state[node] = "done"

    for node in graph:
        if node not in state:
            visit(node, [node])
    return found


def main():
    findings = []
    graph = {}
    for source in sources():
        name = source.relative_to(ROOT).as_posix()
        text = source.read_text(errors="replace")
        code = COMMENT_OR_STRING.sub("", text)
        targets = [(include, resolve(include, source)) for include in INCLUDE.findall(text)]
        graph[source] = [target for _, target in targets if target]

        for include, target in targets:
            if target is None:
                findings.append(f'{name}: "{include}" is found from no include root; write the path from libraries/src, projects/src or platform')
                continue
            here, there = room_of(source), room_of(target)
            if here and there and LEVELS[there] > LEVELS[here]:
                findings.append(f"{name}: includes {include}, a higher room; move the code up, or declare what it needs lower down")
            if target.is_relative_to(ROOT / "platform") and not name.startswith(PLATFORM_USERS):
                findings.append(f"{name}: includes {include}; only the application talks to the camera library")

        plain = re.match(r"libraries/src/(image|detection|math)/rk_", name)
        if plain and re.search(r"\bthrow\b|\bLogInterface\b|\brktl_Logger\b", code):
            findings.append(f"{name}: the plain core neither throws nor logs; return 0 and let the caller speak")
        if name.startswith("tests/") and re.search(r"\b(sleep_for|usleep|sleep)\s*\(", code):
            findings.append(f"{name}: sleeps and hopes; wait for the event itself with a limit, or move the virtual clock")
        if name.startswith(("libraries/", "projects/")) and re.search(r"\bcsdk_\w+\s*\(", code) \
                and not re.search(r"projects/src/application/(Coordinator\w*|main)\.(cpp|h)$", name):
            findings.append(f"{name}: only Coordinator calls the camera library")
        if source.suffix == ".h" and not re.search(r"^#pragma once", text, re.M):
            findings.append(f"{name}: has no #pragma once")

    for path in cycles(graph):
        findings.append("include cycle: " + " -> ".join(node.relative_to(ROOT).as_posix() for node in path))

    for finding in findings:
        print(finding)
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
