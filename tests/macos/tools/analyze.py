"""Has clang's static analyzer look at every Objective-C++ source the way it is compiled. Any finding fails.

usage: analyze.py BUILD_TREE
"""

import sys
from pathlib import Path

from compiler import Compiler

OPTIONS = ("--analyze", "--analyzer-output", "text", "-o", "/dev/null")


def main():
    compiler = Compiler(Path(sys.argv[1]))
    sources = compiler.sources(".mm")
    results = [compiler.run(source, *OPTIONS) for source in sources]
    found = [r.stderr for r in results if r.returncode or r.stderr.strip()]
    print("\n".join(found) if found else f"nothing to say about {len(sources)} sources")
    return 1 if found or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
