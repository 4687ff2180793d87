#!/usr/bin/env python3
"""Checks that includes run downward: each layer includes only the layers named for it here, an include is written
from the project's root, names a file that exists, and neither headers nor folders include each other in a circle. Of
what one program is made of, no two headers give one name in one namespace to two types: the linker takes one of them
for both, without a word."""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent

# A layer, and what it may include besides itself. From the ground up.
BASE = ["platform/text", "platform/paths", "platform/registry"]
PLATFORM = BASE + ["platform/com", "platform/files", "platform/storage", "platform/threads", "platform/ui"]
LAYERS = {
    "platform/text": [],
    "platform/paths": ["platform/text"],
    "platform/registry": ["platform/text", "platform/paths"],
    "platform/com": ["platform/text"],
    "platform/files": BASE + ["platform/com"],
    "platform/storage": BASE + ["platform/com", "platform/files"],
    "platform/threads": BASE + ["platform/com", "platform/files"],
    "platform/ui": BASE + ["platform/com"],
    "typelib": PLATFORM,
    "repository": PLATFORM + ["typelib"],
    "engine": PLATFORM + ["typelib"],
    "model": PLATFORM + ["typelib", "engine"],
    "tools": PLATFORM + ["typelib", "engine", "model"],
    "sourcecontrol": PLATFORM + ["typelib", "engine", "model"],
    "ui": PLATFORM + ["typelib", "engine", "model", "tools", "sourcecontrol"],
    "plugin": PLATFORM + ["typelib", "engine", "model", "tools", "sourcecontrol", "ui"],
    # The workbench reaches the module through its exports and interfaces alone; what tools a build would run it asks
    # the adapters' own reading of commands. Hosts are what shows it to a user.
    "workbench": PLATFORM + ["typelib", "plugin", "adapters"],
    "hosts": PLATFORM + ["typelib", "plugin", "adapters", "workbench"],
    # Programs of their own, which start thousands of times: small.
    "adapters": BASE,
    "spawner": BASE + ["adapters"],
}
ADAPTERS_SHARE = "adapters/common"
# These may include anything, and no layer includes them.
OUTSIDE = ["tests", "bench", "fuzz"]

# Linked into one shared object.
MODULE = ["engine", "model", "tools", "sourcecontrol", "ui", "plugin"]

NAMESPACE = re.compile(r"^namespace ([\w:]+) \{$")
TYPE = re.compile(r"^(?:struct|class|enum class|enum) (\w+)(?: final)?(?: : .*| :| \{.*)?$")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def layer_of(path):
    return next((layer for layer in [*LAYERS, *OUTSIDE] if path.startswith(layer + "/")), None)


def sources():
    for top in sorted({layer.split("/")[0] for layer in [*LAYERS, *OUTSIDE]}):
        for suffix in ("h", "cc"):
            yield from sorted((ROOT / top).rglob(f"*.{suffix}"))


def includes_of(path):
    for number, line in enumerate((ROOT / path).read_text().splitlines(), 1):
        if match := INCLUDE.match(line):
            yield number, match[1]


def fault(path, target):
    """What is wrong with `path` including `target`, or None."""
    here, there = layer_of(path), layer_of(target)
    if not (ROOT / target).is_file():
        return "no such file below the project's root"
    if here is None:
        return "the including file belongs to no layer"
    if there is None:
        return "the included file belongs to no layer"
    if here in OUTSIDE:
        return None
    if here == "adapters" == there:
        own = str(Path(path).parent)
        return None if target.startswith((own + "/", ADAPTERS_SHARE + "/")) else "adapters share adapters/common only"
    if here == there:
        return None
    return None if there in LAYERS[here] else f"{here} may not include {there}"


def folders(graph):
    """The folders that each folder of a layer includes. Files beside subfolders may serve these and list them too."""
    between = {}
    for path, targets in graph.items():
        for target in targets if layer_of(path) in LAYERS else []:
            here, there = Path(path).parent, Path(target).parent
            if here not in [there, *there.parents] and there not in here.parents:
                between.setdefault(str(here), []).append(str(there))
    return between


def circle(graph):
    """The first circle in the graph, as a list of its nodes, or an empty list."""
    done, trail = set(), []

    def visit(path):
        if path in trail:
            return trail[trail.index(path):] + [path]
        if path in done:
            return []
        trail.append(path)
        for target in graph.get(path, []):
            if found := visit(target):
                return found
        trail.pop()
        done.add(path)
        return []

    return next((found for path in graph if (found := visit(path))), [])


def types_of(path):
    """The types that a header defines in a namespace: line, full name."""
    namespaces = []
    for number, line in enumerate((ROOT / path).read_text().splitlines(), 1):
        if match := NAMESPACE.match(line):
            namespaces.append(match[1])
        elif line.startswith("}  // namespace"):
            namespaces.pop()
        elif match := TYPE.match(line):
            yield number, "::".join([*namespaces, match[1]])


def one_program(first, second):
    """Whether both may be linked into one program: the small ones share nothing with the module but what is below."""
    small = [layer_of(path) in ("adapters", "spawner") for path in (first, second)]
    module = [layer_of(path) in MODULE for path in (first, second)]
    repository = [layer_of(path) == "repository" for path in (first, second)]
    if repository[0] != repository[1]:
        return not (module[0] or module[1] or small[0] or small[1])
    return not (small[0] and module[1] or small[1] and module[0])


def double_types(headers):
    seen = {}
    for path in headers:
        for number, name in types_of(path):
            for other in seen.setdefault(name, []):
                if one_program(path, other):
                    yield f"{path}:{number}: {name} is another type in {other}"
            seen[name].append(path)


def main():
    faults, graph = [], {}
    for file in sources():
        path = str(file.relative_to(ROOT))
        graph[path] = []
        for number, target in includes_of(path):
            graph[path].append(target)
            if wrong := fault(path, target):
                faults.append(f'{path}:{number}: "{target}": {wrong}')
    if found := circle(graph):
        faults.append("headers in a circle: " + " -> ".join(found))
    if found := circle(folders(graph)):
        faults.append("folders in a circle: " + " -> ".join(found))
    faults += double_types(path for path in graph if path.endswith(".h") and layer_of(path) in LAYERS)
    print("\n".join(faults) if faults else f"{len(graph)} files include downward only")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
