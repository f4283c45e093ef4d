"""Builds the directory that stands in for the platform's development kit: declarations made from
api-facts.tsv, and text stubs that list exactly what is declared, so that anything else fails to compile or
to link.

The C library's headers are musl's and the C++ library is LLVM's, both as Debian packages them; of third-party
libraries it takes Debian's headers and the symbols Debian's libraries export, and of GoogleTest those of a build
with LLVM's C++ library. ICU comes as archives, as Homebrew has it, too. Nothing linked here ever runs.

usage: sysroot.py DIRECTORY [GOOGLETEST_PREFIX]
"""

import re
import shutil
import subprocess
import sys
from pathlib import Path

import facts as fact_table

HERE = Path(__file__).resolve().parent.parent
LLVM = Path("/usr/lib/llvm-19")
MUSL_HEADERS = Path("/usr/include/x86_64-linux-musl")
MUSL_LIBRARY = Path("/usr/lib/x86_64-linux-musl/libc.so")
DEBIAN_LIBRARIES = Path("/usr/lib/x86_64-linux-gnu")
TARGETS = "[ arm64-macos, x86_64-macos ]"

FRAMEWORKS = {
    # name: (letter of its version, what its header includes)
    "Foundation": ("C", ["objc/objc.h", "dispatch/dispatch.h"]),
    "AppKit": ("C", ["Foundation/Foundation.h"]),
    "WebKit": ("A", ["AppKit/AppKit.h"]),
    "Security": ("A", ["objc/objc.h"]),
}

# What the compiler calls for Objective-C under ARC, by the names of the runtime's published interface.
OBJECTIVE_C_RUNTIME = """
    objc_alloc objc_alloc_init objc_allocWithZone objc_opt_new objc_opt_self objc_opt_class
    objc_opt_isKindOfClass objc_opt_respondsToSelector objc_retain objc_release objc_autorelease
    objc_retainAutorelease objc_retainAutoreleaseReturnValue objc_retainAutoreleasedReturnValue
    objc_claimAutoreleasedReturnValue objc_unsafeClaimAutoreleasedReturnValue objc_autoreleaseReturnValue
    objc_storeStrong objc_storeWeak objc_initWeak objc_loadWeak objc_loadWeakRetained objc_destroyWeak
    objc_copyWeak objc_moveWeak objc_retainBlock objc_autoreleasePoolPush objc_autoreleasePoolPop
    objc_msgSend objc_msgSendSuper2 objc_msgSend_stret objc_msgSendSuper2_stret objc_msgSend_fpret
    objc_getProperty objc_setProperty_atomic objc_setProperty_nonatomic objc_setProperty_atomic_copy
    objc_setProperty_nonatomic_copy objc_copyStruct objc_enumerationMutation objc_sync_enter objc_sync_exit
    objc_exception_throw objc_exception_rethrow objc_begin_catch objc_end_catch objc_terminate
    __objc_personality_v0 _objc_empty_cache _objc_empty_vtable OBJC_EHTYPE_id
""".split() + [f"objc_{verb}_x{register}" for verb in ("retain", "release") for register in range(29)]

COMPILER_SUPPORT = """
    __stack_chk_guard __stack_chk_fail _tlv_bootstrap dyld_stub_binder __cxa_thread_atexit _tlv_atexit bzero __bzero
    _Block_copy _Block_release _Block_object_assign _Block_object_dispose
    _NSConcreteGlobalBlock _NSConcreteStackBlock _dispatch_main_q _dispatch_source_type_signal
    __CFConstantStringClassReference __NSArray0__ __NSDictionary0__
""".split()

OBJECTIVE_C_LIBRARY = "/usr/lib/libobjc.A.dylib"
THIRD_PARTY_HEADERS = ["unicode", "nlohmann"]

# Declared in sysroot/objc/objc.h.
C_STRUCTURES = {"NSFastEnumerationState"}

# The table's collections hold objects of any class; the language lets a declaration name it.
TYPE_PARAMETERS = {
    "NSArray": "<__covariant ObjectType>", "NSMutableArray": "<ObjectType>",
    "NSDictionary": "<__covariant KeyType, __covariant ObjectType>",
    "NSMutableDictionary": "<KeyType, ObjectType>",
}
TYPE_ARGUMENTS = {"NSArray": "<ObjectType>", "NSDictionary": "<KeyType, ObjectType>"}


# Headers

def available(fact):
    """The availability mark for operations that came after the oldest system the compiler can be told."""
    version = re.match(r"(\d+)\.(\d+)$", fact.since)
    if not version or (int(version.group(1)), int(version.group(2))) < (10, 13):
        return ""
    return f" API_AVAILABLE({fact.since})"


def without_unknown_protocols(types, known):
    """Leaves out of `Name : Base <A, B>` the protocols that the table does not declare."""
    head, _, listed = types.partition(" <")
    kept = [p for p in (q.strip() for q in listed.rstrip(">").split(",")) if p in known]
    return f"{head} <{', '.join(kept)}>" if kept else head


def type_block(owner, members, known):
    head = without_unknown_protocols(owner.declaration, known)
    if owner.owner in TYPE_PARAMETERS:
        head = head.replace(owner.owner, owner.owner + TYPE_PARAMETERS[owner.owner], 1)
        head = re.sub(r"(?<=: )(NSArray|NSDictionary)", lambda m: m.group(1) + TYPE_ARGUMENTS[m.group(1)], head)
    lines = [f"@{owner.kind if owner.kind == 'protocol' else 'interface'} {head}"]
    if owner.owner == "NSObject":
        lines.append("{ Class isa; }")
    optional = False
    for fact in sorted(members, key=lambda f: f.kind == "optional callback"):
        if fact.kind == "optional callback" and not optional:
            lines.append("@optional")
            optional = True
        prefix = "@property " if fact.kind == "property" else ""
        lines.append(f"{prefix}{fact.declaration}{available(fact)};")
    return "\n".join(lines + ["@end", ""])


def in_order_of_inheritance(types):
    done, by_name = [], {t.owner: t for t in types}

    def visit(fact):
        if fact in done:
            return
        for name in re.findall(r"\w+", fact.declaration)[1:]:
            if name in by_name and by_name[name] is not fact:
                visit(by_name[name])
        done.append(fact)

    for fact in types:
        visit(fact)
    return done


def enumeration_block(head, values):
    macro = "NS_OPTIONS" if head.kind == "options" else "NS_ENUM"
    lines = []
    for fact in values:
        number = int(fact.value)
        suffix = "ull" if number > 0xFFFFFFFF else "u" if number > 0x7FFFFFFF else ""
        lines.append(f"    {fact.name} = {number}{suffix},")
    return "\n".join([f"typedef {macro}({head.declaration}, {head.owner}) {{", *lines, "};"])


def free_declaration(fact):
    if fact.kind == "number":
        return f"static const {fact.declaration};"
    return f"extern {fact.declaration}{available(fact)};"


def header(framework, facts):
    own = [f for f in facts if f.framework == framework]
    types = [f for f in facts if f.kind in ("class", "protocol")]
    protocols = {f.owner for f in types if f.kind == "protocol"} | {"NSObject"}
    parts = ["// Generated from tests/macos/api-facts.tsv.", "#pragma once"]
    parts += [f"#include <{name}>" for name in FRAMEWORKS.get(framework, ("", ["dispatch/base.h"]))[1]]
    parts += ["#pragma clang assume_nonnull begin", "FACTS_BEGIN"]
    if framework == "Foundation":
        classes = sorted({f.owner for f in types if f.kind == "class"} | undeclared_classes(facts))
        parts.append(f"@class {', '.join(c + TYPE_PARAMETERS.get(c, '') for c in classes)};")
        parts.append(f"@protocol {', '.join(sorted(protocols - {'NSObject'}))};")
    for head in own:
        if head.kind in ("enumeration", "options"):
            parts.append(enumeration_block(
                head, [f for f in own if f.kind == "value" and f.owner == head.owner]))
    parts += [free_declaration(f) for f in own if f.kind == "number"]
    for owner in in_order_of_inheritance([f for f in types if f.framework == framework]):
        members = [f for f in facts if f.owner == owner.owner and f.parsed]
        parts.append(type_block(owner, members, protocols))
    parts += [free_declaration(f) for f in own if f.kind in ("constant", "function")]
    return "\n".join(parts + ["FACTS_END", "#pragma clang assume_nonnull end", ""])


def undeclared_classes(facts):
    """Classes that only stand in signatures; nothing can be sent to them."""
    declared = {f.owner for f in facts if f.kind in ("class", "protocol", "enumeration", "options")}
    mentioned = {name for f in facts if f.parsed or f.kind in ("constant", "function")
                 for name in re.findall(r"\b((?:NS|WK)[A-Z]\w+) ?\*", f.declaration)}
    return mentioned - declared - C_STRUCTURES


# Stubs

def exported_symbols(*libraries, dynamic=True):
    found = set()
    which = ["-D"] if dynamic else ["--extern-only"]
    for library in libraries:
        listing = subprocess.run(
            ["llvm-nm-19", *which, "--defined-only", "-j", str(library.resolve())],
            check=True, capture_output=True, text=True).stdout
        found |= {line.split("@")[0] for line in listing.split() if not line.endswith(":")}
    return found


def stub(install_name, symbols=(), classes=(), reexports=()):
    lines = ["--- !tapi-tbd", "tbd-version: 4", f"targets: {TARGETS}", f"install-name: '{install_name}'",
             "current-version: 1", "compatibility-version: 1"]
    if reexports:
        lines += ["reexported-libraries:", f"  - targets: {TARGETS}", f"    libraries: [ {', '.join(reexports)} ]"]
    lines += ["exports:", f"  - targets: {TARGETS}"]
    if symbols:
        names = sorted("dyld_stub_binder" if s == "dyld_stub_binder" else f"_{s}" for s in set(symbols))
        lines.append("    symbols: [ " + ", ".join(f"'{name}'" for name in names) + " ]")
    if classes:
        lines.append(f"    objc-classes: [ {', '.join(sorted(classes))} ]")
    return "\n".join(lines + ["...", ""])


def framework_stub(framework, facts):
    own = [f for f in facts if f.framework == framework]
    install_name = f"/System/Library/Frameworks/{framework}.framework/Versions/{FRAMEWORKS[framework][0]}/{framework}"
    symbols = [f.name for f in own if f.kind in ("constant", "function")]
    if framework == "Foundation":
        symbols += [s for s in COMPILER_SUPPORT if s.startswith(("__CF", "__NS"))]
    classes = [f.owner for f in own if f.kind == "class" and f.owner != "NSObject"]
    # As on macOS, whoever links Foundation gets the Objective-C runtime with it.
    reexports = [OBJECTIVE_C_LIBRARY] if framework == "Foundation" else []
    return stub(install_name, symbols, classes, reexports)


def system_stub(facts):
    locale_functions = re.findall(r"(\w+_l)\(", (HERE / "sysroot/xlocale.h").read_text())
    symbols = exported_symbols(MUSL_LIBRARY, LLVM / "lib/libunwind.so.1")
    symbols |= {f.name for f in facts if f.framework == "Dispatch"}
    symbols |= {s for s in COMPILER_SUPPORT if not s.startswith(("__CF", "__NS"))} | set(locale_functions)
    return stub("/usr/lib/libSystem.B.dylib", symbols)


# The directory

def add_availability(include):
    """The C++ library's configuration as macOS has it: what came after the oldest system is marked."""
    configuration = (LLVM / "include/c++/v1/__config_site").read_text()
    switch = "#define _LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS\n"
    if switch not in configuration:
        raise SystemExit("the C++ library no longer says that it knows nothing of availability")
    write(include / "availability/__config_site", configuration.replace(switch, ""))


def add_googletest(root, built):
    prefix = root / "usr/local"
    for name in ("gtest", "gmock"):
        shutil.copytree(built / "include" / name, prefix / "include" / name, dirs_exist_ok=True)
    for name in ("gtest", "gtest_main", "gmock", "gmock_main"):
        symbols = exported_symbols(built / f"lib/lib{name}.a", dynamic=False)
        write(prefix / f"lib/lib{name}.tbd", stub(f"/usr/local/lib/lib{name}.dylib", symbols))


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def copy_c_headers(include):
    shutil.copytree(MUSL_HEADERS, include, dirs_exist_ok=True)
    # Eight-byte integers are `long long` on macOS and `long` in musl; overloads tell the two apart.
    types = include / "bits/alltypes.h"
    text = types.read_text().replace("#define _Int64 long", "#define _Int64 long long")
    types.write_text(text.replace("typedef _Int64 time_t;", "typedef long time_t;"))
    shutil.copytree(HERE / "sysroot", include, dirs_exist_ok=True)


def compile_symbols(root, result, symbols, *options):
    """Code for both architectures that has these symbols, and nothing behind them."""
    source = result.with_suffix(".c")
    text = "".join(f"void {s}(void) {{}}\n" for s in sorted(symbols) if not s.startswith("__bss"))
    if result.exists() and source.exists() and source.read_text() == text:
        return False
    source.parent.mkdir(parents=True, exist_ok=True)
    result.unlink(missing_ok=True)
    source.write_text(text)
    subprocess.run(
        [LLVM / "bin/clang", "-target", "apple-macos", "-arch", "arm64", "-arch", "x86_64", "-isysroot", root,
         f"-B{root}/usr/bin", "-fuse-ld=lld", "-w", "-Wno-everything", *options, "-o", result, source], check=True)
    return True


def add_archive(root, path, symbols):
    compiled = path.with_suffix(".o")
    if compile_symbols(root, compiled, symbols, "-c", "-fno-builtin", "-mmacosx-version-min=12.0"):
        subprocess.run([LLVM / "bin/llvm-libtool-darwin", "-static", "-o", path, compiled], check=True)


def add_third_party(root):
    prefix = root / "usr/local"
    (prefix / "include").mkdir(parents=True, exist_ok=True)
    for name in THIRD_PARTY_HEADERS:
        link = prefix / "include" / name
        if not link.is_symlink():
            link.symlink_to(Path("/usr/include") / name)
    for name in ("icuuc", "icudata"):
        add_archive(root, prefix / f"lib/lib{name}.a", exported_symbols(DEBIAN_LIBRARIES / f"lib{name}.so"))
    shutil.copytree("/usr/share/cmake/nlohmann_json", prefix / "share/cmake/nlohmann_json", dirs_exist_ok=True)


def build(root, facts):
    include, libraries = root / "usr/include", root / "usr/lib"
    if not (include / "stdio.h").exists():
        copy_c_headers(include)
    shutil.copytree(HERE / "sysroot", include, dirs_exist_ok=True)
    write(include / "dispatch/dispatch.h", header("Dispatch", facts))
    for framework in FRAMEWORKS:
        folder = root / f"System/Library/Frameworks/{framework}.framework"
        write(folder / f"Headers/{framework}.h", header(framework, facts))
        write(folder / f"{framework}.tbd", framework_stub(framework, facts))
    write(libraries / "libSystem.tbd", system_stub(facts))
    write(libraries / "libobjc.A.tbd", stub(OBJECTIVE_C_LIBRARY, OBJECTIVE_C_RUNTIME, ["NSObject"]))
    write(libraries / "libc++.tbd", stub(
        "/usr/lib/libc++.1.dylib",
        exported_symbols(LLVM / "lib/libc++.so.1", LLVM / "lib/libc++abi.so.1")))
    add_availability(include)
    # The compiler looks for it by this name to join the two architectures.
    lipo = root / "usr/bin/lipo"
    lipo.parent.mkdir(exist_ok=True)
    if not lipo.is_symlink():
        lipo.symlink_to(LLVM / "bin/llvm-lipo")
    add_third_party(root)


if __name__ == "__main__":
    build(Path(sys.argv[1]).resolve(), fact_table.load())
    if len(sys.argv) > 2:
        add_googletest(Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve())
