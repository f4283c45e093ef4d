"""Plants mistakes in copies of the sources and tables and demands that each is reported, and for its own
reason. Fails when one passes unnoticed.

usage: planted.py PUBLISHED_DIRECTORY BUILD_DIRECTORY
"""

import re
import shlex
import shutil
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

import analyze
import facts as fact_table
import program as mach_o
import published as published_tables
import verify_program
from compiler import Compiler
from verify_facts import Verifier

ROOT = Path(__file__).resolve().parents[3]
COCOA = "platform/cocoa"


@dataclass
class Mistake:
    title: str
    file: str
    right: str
    wrong: str
    report: str  # regular expression
    compiled: str = ""  # the source to compile, when that is another one
    flags: tuple = ()

    def planted_text(self):
        text = (ROOT / self.file).read_text()
        if text.count(self.right) == 0:
            raise SystemExit(f"{self.title}: {self.file} has no {self.right!r} any more")
        return text.replace(self.right, self.wrong, 1)


# What the compiler must report.
COMPILED = [
    Mistake("a wrong selector", f"{COCOA}/Window.mm", "[window_ zoom:nil]", "[window_ zoomed:nil]",
            "may not respond to 'zoomed:'|no visible @interface"),
    Mistake("a selector nobody has, sent to any object", f"{COCOA}/Conversions.mm",
            "[key isKindOfClass:[NSString class]]", "[key isKindofClass:[NSString class]]",
            "isKindofClass"),
    Mistake("an unknown property", f"{COCOA}/Panels.mm", "panel_.prompt", "panel_.promptText", "promptText"),
    Mistake("a read-only property", f"{COCOA}/Window.mm", "window_.title =", "window_.windowNumber = 1; window_.title =",
            "readonly"),
    Mistake("a wrong argument", f"{COCOA}/Window.mm", "[window_ setFrameAutosaveName:toNSString(name)]",
            "[window_ setFrameAutosaveName:name]", "no viable conversion"),
    Mistake("an unknown constant", f"{COCOA}/Notifications.mm", "return NSWindowDidResizeNotification",
            "return NSWindowDidGrowNotification", "undeclared identifier 'NSWindowDidGrowNotification'"),
    Mistake("a wrong value in the seam", "platform/Window.h", "NSWindowStyleMaskFullSizeContentView = 32768",
            "NSWindowStyleMaskFullSizeContentView = 16", "static assertion failed", f"{COCOA}/Values.mm"),
    Mistake("a missing method of a protocol", f"{COCOA}/WebDelegates.mm", "- (void)userContentController:",
            "- (void)contentController:", "method 'userContentController:didReceiveScriptMessage:'.*not implemented"),
    Mistake("a callback with another type", f"{COCOA}/ApplicationDelegate.mm",
            "- (void)applicationWillTerminate:(NSNotification*)", "- (void)applicationWillTerminate:(NSString*)",
            "conflicting parameter types"),
    Mistake("a new operation of the seam", "platform/Window.h", "virtual void zoom() = 0;",
            "virtual void zoom() = 0; virtual void shade() = 0;", "abstract class", f"{COCOA}/Platform.mm"),
    Mistake("a changed operation of the seam", "platform/Window.h", "virtual void zoom() = 0;",
            "virtual void zoom(bool animated) = 0;", "marked 'override' hides virtual member function", f"{COCOA}/Window.mm"),
    Mistake("an undeclared action", f"{COCOA}/Menus.mm", "NSSelectorFromString(toNSString(item.action))",
            "@selector(terminateNow:)", "undeclared selector 'terminateNow:'"),
    Mistake("an operation newer than the oldest system", f"{COCOA}/WebView.mm", "underPageBackgroundColor",
            "underPageBackgroundColor", "only available on macOS 12", flags=("-mmacosx-version-min=11.0",)),
    Mistake("a function of the C++ library newer than the oldest system", "server/Text.cpp",
            "namespace harbrook {",
            "#include <charconv>\nnamespace harbrook {\n"
            "char* newer(char* text, double number) { return std::to_chars(text, text + 31, number).ptr; }",
            "'to_chars' is unavailable: introduced in macOS 13"),
    Mistake("a cast that says nothing about ownership", f"{COCOA}/View.mm", "(__bridge const void*)view",
            "(const void*)view", "requires a bridged cast"),
]

# What the analyzer must report.
ANALYSED = [
    Mistake("nothing, added to a list", f"{COCOA}/View.mm", "[native addObject:toNSLayoutConstraint(constraint)];",
            "{ NSLayoutConstraint* none = nil; [native addObject:none]; }", "cannot be nil"),
    Mistake("a division by zero", f"{COCOA}/Dispatch.mm", "    [timer_ invalidate];",
            "    [timer_ invalidate];\n    const int zero = 0;\n    static_cast<void>(1 / zero);", "Division by zero"),
]

# What shows only in the linked program.
LINKED = [
    Mistake("a misspelt optional callback", f"{COCOA}/ApplicationDelegate.mm", "- (void)applicationWillTerminate:",
            "- (void)applicationWilTerminate:", r"applicationWilTerminate:\] is no callback"),
    Mistake("a callback left out", f"{COCOA}/WebDelegates.mm", "- (void)webView:(WKWebView*)webView didFailNavigation:",
            "- (void)initWithDelegate:(WKWebView*)webView or:", "has no webView:didFailNavigation:withError:"),
    Mistake("a protocol not adopted", f"{COCOA}/StatusItem.mm", "NSObject <NSMenuDelegate>", "NSObject",
            "menuWillOpen.*is no callback|does not adopt", flags=("-Wno-error",)),
    Mistake("an imported constant that no library has", f"{COCOA}/Network.mm", "namespace harbrook::cocoa {",
            'extern "C" NSString* const NSNoSuchName;\nnamespace harbrook::cocoa { NSString* noSuch() { return NSNoSuchName; }',
            "undefined symbol: _NSNoSuchName|undefined symbol.*NSNoSuchName", flags=("-Wno-error",)),
    Mistake("a class that no library has", f"{COCOA}/Network.mm", "namespace harbrook::cocoa {",
            "@interface NSNoSuch : NSObject\n@end\nnamespace harbrook::cocoa { id noSuch() { return [[NSNoSuch alloc] init]; }",
            "undefined symbol.*NSNoSuch", flags=("-Wno-error",)),
]

# What the table of facts must not say.
FACTS = "tests/macos/api-facts.tsv"
DECLARED = [
    Mistake("a declared selector that is not published", FACTS, "setFrameAutosaveName:(", "setFrameAutosavingName:(",
            "no such method"),
    Mistake("a constant with another value", FACTS, "NSWindowStyleMaskResizable = 8", "NSWindowStyleMaskResizable = 16",
            "published as 8"),
    Mistake("a constant that is not published", FACTS, "const NSWindowDidResizeNotification",
            "const NSWindowDidResizedNotification", "no such constant"),
    Mistake("a property with another type", FACTS, "NSInteger maximumNumberOfLines", "NSString *maximumNumberOfLines",
            "published with another type"),
    Mistake("a callback with other parameters", FACTS, "decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler",
            "decisionHandler:(void (^)(BOOL))decisionHandler", "published with other types"),
    Mistake("an optional callback called required", FACTS, "NSApplicationDelegate\toptional callback",
            "NSApplicationDelegate\trequired callback", "optional in one table"),
]

# What the core names as text.
NAMED = [
    Mistake("a menu action that nobody answers", "app/MainMenu.cpp", '"performMiniaturize:"', '"performMiniaturise:"',
            "no class has the action performMiniaturise:"),
    Mistake("a wrong key", "window/MainWindow.cpp", '"drawsBackground"', '"drawsTheBackground"',
            "no class has the property drawsTheBackground"),
]


# What installing must not leave out: parts of the script that CMake has made of packaging/macos/CMakeLists.txt.
INSTALLED = [
    Mistake("a table of symbols that names the build folder", "", " -S ", " --no-strip-all ", "holds the path of the build"),
    Mistake("code that is changed and not signed", "", "packaging/macos/sign", "packaging/macos/sign --help",
            "Harbrook was not signed after it was changed"),
]


class Planter:
    def __init__(self, tables, build):
        self.published = published_tables.load(tables)
        self.tree = build / "tree"
        self.folder = build / "planted"
        self.compiler = Compiler(self.tree)
        shutil.rmtree(self.folder, ignore_errors=True)

    def plant(self, mistake):
        path = self.folder / mistake.file
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(mistake.planted_text())
        return path

    def compile(self, mistake, *options):
        """The compiler's report on the mistake, for one architecture."""
        planted = self.plant(mistake)
        return self.compiler.run(
            ROOT / (mistake.compiled or mistake.file), *mistake.flags, *options,
            instead=None if mistake.compiled else planted, before=[f"-I{self.folder}"])

    def report_of_compiler(self, mistake):
        result = self.compile(mistake, "-fsyntax-only")
        return result.stderr if result.returncode else ""

    def report_of_analyzer(self, mistake):
        return self.compile(mistake, *analyze.OPTIONS).stderr

    def report_of_program(self, mistake):
        objects = self.folder / "planted.o"
        compiled = self.compile(mistake, "-c", "-o", str(objects))
        if compiled.returncode:
            return compiled.stderr
        program = self.folder / "Harbrook"
        linked = self.link(objects, program)
        if linked.returncode:
            return linked.stderr
        read = mach_o.read(str(program), "arm64")
        return "\n".join(verify_program.check_methods(read, self.published)
                         + verify_program.check_callbacks(read, self.published))

    def link(self, planted, program):
        """Links as the build does; the archive's own object of the planted source is then not asked for."""
        ninja = subprocess.run(["ninja", "-C", str(self.tree), "-t", "commands", "harbrook"],
                               check=True, capture_output=True, text=True).stdout
        line = next(l for l in ninja.splitlines() if "Harbrook.app/Contents/MacOS/Harbrook" in l and "-o " in l)
        command = re.search(r"(\S*clang\+\+ .*?)(?: && |$)", line).group(1)
        words = shlex.split(command.replace("-arch x86_64", ""))
        words[words.index("-o") + 1] = str(program)
        words.insert(1, str(planted))
        return subprocess.run(words, capture_output=True, text=True, cwd=self.tree)

    def report_on_facts(self, mistake):
        return "\n".join(Verifier(self.published, fact_table.load(self.plant(mistake))).run())

    def report_on_names(self, mistake):
        copy = self.folder / "names"
        for folder in ("app", "server", "window", "status", "shots"):
            shutil.copytree(ROOT / folder, copy / folder, dirs_exist_ok=True)
        (copy / mistake.file).write_text(mistake.planted_text())
        return "\n".join(verify_program.check_core_names(self.published, copy))

    def report_of_installation(self, mistake):
        script = self.tree / "packaging/macos/cmake_install.cmake"
        right = script.read_text()
        if mistake.right not in right:
            raise SystemExit(f"{mistake.title}: {script} has no {mistake.right!r} any more")
        script.write_text(right.replace(mistake.right, mistake.wrong))
        try:
            result = subprocess.run([ROOT / "tests/macos/rehearse-install", self.tree, self.folder / "installed"],
                                    capture_output=True, text=True)
        finally:
            script.write_text(right)
        return result.stdout + result.stderr if result.returncode else ""

    def is_found(self, mistake, report):
        found = re.search(mistake.report, report)
        shutil.rmtree(self.folder, ignore_errors=True)
        if not found:
            print(f"  {mistake.title}: NOT NOTICED; reported was: {report[:1500] or 'nothing'}")
        return bool(found)


def main():
    planter = Planter(sys.argv[1], Path(sys.argv[2]))
    stages = [(COMPILED, planter.report_of_compiler), (ANALYSED, planter.report_of_analyzer),
              (LINKED, planter.report_of_program),
              (DECLARED, planter.report_on_facts), (NAMED, planter.report_on_names),
              (INSTALLED, planter.report_of_installation)]
    results = [planter.is_found(mistake, report(mistake)) for mistakes, report in stages for mistake in mistakes]
    print(f"{sum(results)} of {len(results)} planted mistakes reported")
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
