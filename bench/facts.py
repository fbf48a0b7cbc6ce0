"""Facts that need no benchmark: the machine, and what a library costs before it is called."""

import ctypes
import os
import re
import statistics
import subprocess
import tempfile
import time


def machine(context):
    """Neither the name of the host nor a path."""
    with open("/proc/cpuinfo", encoding="ascii") as info:
        model = re.search(r"model name\s*: (.*)", info.read())
    system = os.uname()
    release = re.match(r"[\d.]*", system.release)[0]
    yield ["processor", model[1] if model else "unknown"]
    yield ["cores", str(context["num_cpus"])]
    yield ["system", f"{system.sysname} {release}, {system.machine}"]
    yield ["C library", os.confstr("CS_GNU_LIBC_VERSION")]
    yield from ([what, context[what]] for what in ("compiler", "libical", "ICU", "Abseil", "Boost"))


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def relocations(library):
    """Where each relocation is, its type, and what comes after them in the line."""
    lines = output_of("readelf", "--relocs", "--wide", library)
    found = re.findall(r"^([0-9a-f]+)\s+[0-9a-f]+\s+(R_\w+)\s*(.*)$", lines, re.MULTILINE)
    return [(int(offset, 16), kind, rest) for offset, kind, rest in found]


def functions_at_load(library):
    sections = output_of("readelf", "--sections", "--wide", library)
    array = re.search(r" \.init_array\s+\w+\s+([0-9a-f]+)\s+[0-9a-f]+\s+([0-9a-f]+)", sections)
    begin, size = int(array[1], 16), int(array[2], 16)
    names = {}
    for line in output_of("nm", "--demangle", library).splitlines():
        address, _, name = line.partition(" ")
        names.setdefault(address.lstrip("0"), name[2:])
    entries = [rest for offset, _, rest in relocations(library) if begin <= offset < begin + size]
    return [re.sub(r".*::|\(.*", "", names[entry.split()[-1]]) for entry in entries]


def load_time(library):
    """The median in microseconds with all symbols bound, in a process that has the C++ library."""
    system = ctypes.CDLL(None)
    system.dlopen.restype = ctypes.c_void_p
    system.dlclose.argtypes = [ctypes.c_void_p]
    ctypes.CDLL("libstdc++.so.6")
    path = os.fsencode(library)
    times = []
    for _ in range(201):
        begin = time.perf_counter()
        handle = system.dlopen(path, os.RTLD_NOW)
        times.append(time.perf_counter() - begin)
        is_unloaded = handle and system.dlclose(handle) == 0
        if not is_unloaded or system.dlopen(path, os.RTLD_NOW | os.RTLD_NOLOAD):
            raise SystemExit(f"facts.py: {library} cannot be loaded and unloaded")
    return statistics.median(times) * 1e6


def private_memory(library):
    """The kilobytes of the library's pages that belong to this process alone once it is loaded."""
    ctypes.CDLL(library, os.RTLD_NOW)
    with open("/proc/self/smaps", encoding="utf-8") as maps:
        mappings = re.split(r"^(?=[0-9a-f]+-)", maps.read(), flags=re.MULTILINE)
    ours = [mapping for mapping in mappings if mapping.partition("\n")[0].endswith(library)]
    return sum(int(size) for size in re.findall(r"Private_Dirty:\s*(\d+)", "".join(ours)))


def at_rest(library):
    library = os.path.realpath(library)
    microseconds = load_time(library)  # first, since the memory is measured with the library loaded
    os.sync()  # as long as a page is not on the disk, it counts as changed
    with tempfile.NamedTemporaryFile() as stripped:
        output_of("strip", f"--output-file={stripped.name}", library)
        file_size = os.path.getsize(stripped.name)
        sizes = output_of("size", "--format=berkeley", stripped.name).splitlines()[-1].split()
    kinds = [kind for _, kind, _ in relocations(library)]
    by_name = sum("RELATIVE" not in kind for kind in kinds)
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", output_of("readelf", "--dynamic", library))
    return [
        ["size of the stripped shared library", f"{file_size} bytes"],
        ["its code and constants, data, zeroed data", ", ".join(sizes[:3]) + " bytes"],
        ["dynamic relocations", f"{len(kinds)}, {by_name} of them by name"],
        ["functions that run at load", ", ".join(functions_at_load(library))],
        ["shared libraries needed", ", ".join(needed)],
        ["memory that a process has of its own after loading", f"{private_memory(library)} KiB"],
        ["time to load, beside the C++ library", f"{microseconds:.0f} us"],
    ]
