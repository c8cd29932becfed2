"""The native module beside whatever else a process loads."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import converters
from converters import _native

PACKAGE = Path(converters.__file__).parent
BROKEN = "b'ply\\nelement vertex 1\\nelement face 1\\n'"
REASON = "line: 3 element type 'face' not supported"


def run(program, **environment):
    """Runs a program in a fresh interpreter; returns what it prints, with its errors."""
    return subprocess.run(
        [sys.executable, "-c", program],
        check=True,
        text=True,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        env={**os.environ, **environment},
    ).stdout


def reading(package):
    """A program's text that reads a broken file and prints the reason."""
    return (
        f"from {package} import from_ply\n"
        f"try: from_ply({BROKEN})\n"
        f"except ValueError as error: print({package!r}, error)\n"
    )


def test_messages_go_on_to_the_logging_library():
    output = run(reading("converters"), VOLMAR_ENABLE_LOG="1")
    logged = [line for line in output.splitlines() if "ReadHeader [PlyDeserializer" in line]
    assert len(logged) == 1
    assert REASON in logged[0]
    assert f"converters [PlyDeserializer::ReadHeader] Error parsing ply, {REASON}" in output


def test_nothing_is_printed_unless_asked_for():
    environment = {"VOLMAR_ENABLE_LOG": ""}
    assert run(reading("converters"), **environment).count("\n") == 1


def test_reasons_are_found_whatever_library_the_process_has_loaded():
    library = os.environ["CONVERTERS_LIBRARY"]
    program = f"import ctypes; ctypes.CDLL({library!r}, ctypes.RTLD_GLOBAL)\n"
    assert REASON in run(program + reading("converters"))
    assert REASON in run(reading("converters"), LD_PRELOAD=library)


LOGGER = """
#include <cstdio>
namespace p7 {
enum log_level : int { lowest };
void deliver(log_level level, unsigned short, const char* file, const char* function,
             const char* format, ...) {
    std::printf("replaced %d %s %s %s\\n", static_cast<int>(level), file, function, format);
    std::fflush(stdout);
}
}
"""


def test_a_replaced_logging_library_gets_the_messages_too(tmp_path):
    source = tmp_path / "logger.cpp"
    source.write_text(LOGGER)
    library = tmp_path / "liblogger.so"
    subprocess.run(["c++", "-shared", "-fPIC", "-o", library, source], check=True)
    output = run(reading("converters"), LD_PRELOAD=str(library))
    assert "replaced 2 converters/PlySerializerDeserializer ReadHeader %s" in output
    assert REASON in output


def test_two_copies_of_the_package_do_not_disturb_each_other(tmp_path):
    shutil.copytree(PACKAGE, tmp_path / "other", ignore=shutil.ignore_patterns("__pycache__"))
    for file in (tmp_path / "other").glob("*.py"):
        file.write_text(
            file.read_text()
            .replace("from converters", "from other")
            .replace("import converters", "import other")
        )
    program = (
        "import sys, threading\n"
        f"sys.path.insert(0, {str(tmp_path)!r})\n"
        "import converters, other\n"
        "assert other._native.__file__ != converters._native.__file__\n"
        f"BROKEN = {BROKEN}\n"
        "def read(package, kind):\n"
        "    for _ in range(200):\n"
        "        try: package.from_ply(BROKEN.replace(b'face', kind))\n"
        "        except ValueError as error:\n"
        "            assert f\"type '{kind.decode()}' not\" in str(error), error\n"
        "            assert str(error).count('not supported') == 1, error\n"
        "        package.Drawing.from_bytes(b'0\\nEOF\\n')\n"
        "threads = [threading.Thread(target=read, args=args)\n"
        "           for args in ((converters, b'edge'), (other, b'face'))]\n"
        "for thread in threads: thread.start()\n"
        "for thread in threads: thread.join()\n"
        "print('done')\n"
    )
    assert run(program) == "done\n"


def test_nothing_but_the_module_is_exported():
    symbols = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--format=posix", _native.__file__],
        check=True,
        text=True,
        capture_output=True,
    ).stdout
    assert [line.split()[0] for line in symbols.splitlines()] == ["PyInit__native"]
