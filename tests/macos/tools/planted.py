"""Plants mistakes in copies of the sources and tables and demands that each is reported, and for its own
reason. Fails when one passes unnoticed.

usage: planted.py PUBLISHED_DIRECTORY BUILD_DIRECTORY
"""

import json
import re
import shlex
import shutil
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

import facts as fact_table
import program as mach_o
import published as published_tables
import verify_program
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
    Mistake("a cast that says nothing about ownership", f"{COCOA}/View.mm", "(__bridge const void*)view",
            "(const void*)view", "requires a bridged cast"),
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


class Planter:
    def __init__(self, tables, build):
        self.published = published_tables.load(tables)
        self.tree = build / "tree"
        self.folder = build / "planted"
        commands = json.loads((self.tree / "compile_commands.json").read_text())
        self.commands = {c["file"]: shlex.split(c["command"]) for c in commands}
        shutil.rmtree(self.folder, ignore_errors=True)

    def plant(self, mistake):
        path = self.folder / mistake.file
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(mistake.planted_text())
        return path

    def compile(self, mistake, *options):
        """The compiler's report on the mistake, for one architecture."""
        planted = self.plant(mistake)
        source = str(ROOT / (mistake.compiled or mistake.file))
        command = [a for a in self.commands[source] if Path(a).name != "ccache"]
        if not mistake.compiled:
            command[command.index(source)] = str(planted)
        for flag, value in (("-arch", "x86_64"), ("-o", None), ("-MF", None), ("-MT", None)):
            for place in [i for i, a in enumerate(command[:-1]) if a == flag and value in (None, command[i + 1])]:
                command[place:place + 2] = ["", ""]
        command = [a for a in command if a and a != "-MD"]
        command[1:1] = [f"-I{self.folder}"]
        command.remove("-c")
        return subprocess.run(
            [*command, *mistake.flags, *options], capture_output=True, text=True, cwd=self.tree)

    def report_of_compiler(self, mistake):
        result = self.compile(mistake, "-fsyntax-only")
        return result.stderr if result.returncode else ""

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

    def is_found(self, mistake, report):
        found = re.search(mistake.report, report)
        shutil.rmtree(self.folder, ignore_errors=True)
        if not found:
            print(f"  {mistake.title}: NOT NOTICED; reported was: {report[:1500] or 'nothing'}")
        return bool(found)


def main():
    planter = Planter(sys.argv[1], Path(sys.argv[2]))
    stages = [(COMPILED, planter.report_of_compiler), (LINKED, planter.report_of_program),
              (DECLARED, planter.report_on_facts), (NAMED, planter.report_on_names)]
    results = [planter.is_found(mistake, report(mistake)) for mistakes, report in stages for mistake in mistakes]
    print(f"{sum(results)} of {len(results)} planted mistakes reported")
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
