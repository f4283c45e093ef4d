"""Plants mistakes in copies of the Cocoa sources and demands that running them reports each, for its own reason.
Fails when one passes unnoticed.

usage: mistakes.py BUILD_DIRECTORY
"""

import json
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
COCOA = ROOT / "platform/cocoa"


@dataclass
class Mistake:
    title: str
    file: str
    right: str
    wrong: str
    scenario: str  # what to run, as --gtest_filter takes it
    report: str  # regular expression


LAUNCH = "Life.without_node"

MISTAKES = [
    # What is said.
    Mistake("swapped arguments", "View.mm", "NSMakePoint(origin.x, origin.y)", "NSMakePoint(origin.y, origin.x)",
            LAUNCH, r"was told: NSButton#1 setFrameOrigin: \(10, 20\)"),
    Mistake("a lost forward", "Window.mm", "    [window_ center];", "", LAUNCH,
            r"so Cocoa must be told: NSWindow center"),
    Mistake("a forward too many", "Window.mm", "    [window_ center];", "    [window_ center]; [window_ center];", LAUNCH,
            r"and was told: NSWindow center"),
    Mistake("a wrong constant", "Notifications.mm", "return NSWindowDidResignKeyNotification;",
            "return NSWindowDidResizeNotification;", LAUNCH,
            r"and was told: .*NSWindowDidResizeNotification"),
    Mistake("an early return", "Application.mm", "    application_.mainMenu =", "    if (menu.items.size() > 2) return;\n    application_.mainMenu =",
            LAUNCH, r"must be told: NSApplication setWindowsMenu: NSMenu"),
    Mistake("the wrong queue", "Notifications.mm", "queue == ObserverQueue::mainQueue", "queue == ObserverQueue::none", LAUNCH,
            r"was told: .*NSViewFrameDidChangeNotification.* queue: NSOperationQueue"),
    Mistake("a boolean taken for a number", "Conversions.mm",
            "if ([number isKindOfClass:[@YES class]]) return Value(number.boolValue == YES);", "",
            "Life.answers_screenshot_requests", r"must be told: "),
    Mistake("an action that is not handed on", "ApplicationDelegate.mm", "    delegate->performSelector(", "    if (isItem) delegate->performSelector(",
            "Each/MainMenu.command/14", r"must be told: NSWindow makeKeyAndOrderFront"),
    Mistake("a sheet's answer for the other button", "Panels.mm", "completionHandler(response);", "completionHandler(1 - response);",
            "Page.chooses_a_folder_or_does_not:Page.shows_dialogs", r"must be told: WKWebView evaluateJavaScript: |Value of: answers"),
    # To whom, and from where.
    Mistake("a message for another class", "Window.mm", "[window_ center]", "[(id)window_ terminate:nil]", LAUNCH,
            r"is sent terminate:, which nobody declared"),
    Mistake("an argument of another type", "Window.mm", "[window_ center]", "[(id<Planted>)window_ setLevel:3.5]", LAUNCH,
            r"sent with the types vd, and is declared with vq"),
    Mistake("a message off the main thread", "Files.mm", "bool FileManager::createFileAtPath(const std::filesystem::path& path) {",
            "bool FileManager::createFileAtPath(const std::filesystem::path& path) {\n    [NSApp activateIgnoringOtherApps:YES];",
            "Page.is_loaded_again_when_loading_fails", r"activateIgnoringOtherApps: true off the main thread"),
    # Who holds whom.
    Mistake("a delegate that nobody holds", "Application.mm", "    delegate_ = [[HarbrookApplicationDelegate",
            "    application_.delegate = [[HarbrookApplicationDelegate", LAUNCH, r"the application's delegate has gone: nobody kept it"),
    Mistake("a menu's delegate that nobody holds", "StatusItem.mm", "    delegate_ = [[Harb", "    HarbrookMenuDelegate* delegate_ = [[Harb",
            "Status.quits", r"the status menu's delegate has gone: nobody kept it"),
    Mistake("a block that captures too much", "Notifications.mm",
            "                usingBlock:^(NSNotification*) {\n", "                usingBlock:^(NSNotification*) {\n (void)object;\n",
            LAUNCH, r"NSWindow#\d+ is kept by something that the platform keeps"),
    Mistake("a circle of references", "Process.mm", "    if (data.empty()) handle_.readabilityHandler = nil;", "",
            "Page.is_loaded_again_when_loading_fails", r"a stream never comes to its end"),
    Mistake("an object that is never let go", "Menus.mm", "    return result;", "    (void)(__bridge_retained void*)result;\n    return result;",
            LAUNCH, r"NSMenu#\d+ is still there"),
    Mistake("a release too many", "Conversions.mm", "    return string ? string", "    (void)(__bridge_transfer id)(__bridge void*)string;\n    return string ? string",
            LAUNCH, r"heap-use-after-free"),
    Mistake("a timer that goes on", "Dispatch.mm", "Timer::~Timer() {\n    [timer_ invalidate];", "Timer::~Timer() {\n    (void)(__bridge_retained void*)timer_;",
            LAUNCH, r"NSTimer#1 is still there"),
    Mistake("an observer left behind", "Notifications.mm", "                    object:object\n                     queue:native",
            "                    object:[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 1, 1)]\n                     queue:native",
            LAUNCH, r"observers are left behind by what they observed"),
    # Completions.
    Mistake("a completion called twice", "WebDelegates.mm", "            decisionHandler(static_cast<WKNavigationActionPolicy>(policy));",
            "            decisionHandler(static_cast<WKNavigationActionPolicy>(policy));\n            decisionHandler(WKNavigationActionPolicyAllow);",
            "Page.goes_to_every_kind_of_address", r"the decision handler was called twice"),
    Mistake("a completion that is never called", "WebDelegates.mm", "            decisionHandler(static_cast<WKNavigationActionPolicy>(policy));", "",
            "Page.goes_to_every_kind_of_address", r"the decision handler was never called"),
]

# For the message with an argument of another type: what the planted source declares.
PREAMBLE = "@protocol Planted\n- (void)setLevel:(double)level;\n@end\n"


class Planter:
    def __init__(self, build):
        self.build = build
        commands = json.loads((build / "compile_commands.json").read_text())
        self.compilations = {Path(c["file"]).name: c for c in commands if Path(c["file"]).parent.resolve() == COCOA}
        listing = subprocess.run(["ninja", "-C", str(build), "-t", "commands", "scenarios"],
                                 check=True, capture_output=True, text=True).stdout
        self.link = next(line for line in reversed(listing.splitlines()) if " -o scenarios " in line)

    def compile(self, mistake, folder):
        source = folder / mistake.file
        text = (COCOA / mistake.file).read_text()
        if mistake.right not in text:
            raise SystemExit(f"{mistake.title}: {mistake.file} has no {mistake.right!r} any more")
        planted = text.replace(mistake.right, mistake.wrong, 1)
        if "id<Planted>" in planted:
            planted = planted.replace("namespace harbrook", PREAMBLE + "namespace harbrook", 1)
        source.write_text(planted)
        words = [w for w in shlex.split(self.compilations[mistake.file]["command"]) if w != "ccache"]
        words[words.index("-o") + 1] = str(folder / "planted.o")
        words[-1] = str(source)
        return subprocess.run(words, capture_output=True, text=True, cwd=self.build)

    def report(self, mistake):
        """What running the planted source says, or why it does not run."""
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            compiled = self.compile(mistake, folder)
            if compiled.returncode:
                return f"it does not compile: {compiled.stderr}"
            program = folder / "scenarios"
            # Before the archive, whose own object of that source is then not asked for.
            words = shlex.split(self.link.replace(" -o scenarios ", f" -o {program} {folder}/planted.o ")
                                .removeprefix(": && ").removesuffix(" && :"))
            linked = subprocess.run(words, capture_output=True, text=True, cwd=self.build)
            if linked.returncode:
                return f"it does not link: {linked.stderr}"
            # In the first run, what is kept for good is made.
            ran = subprocess.run(
                [str(program), "--gtest_brief=1", f"--gtest_filter=Life.first_run:{mistake.scenario}"],
                capture_output=True, text=True, errors="replace", timeout=120, cwd=folder,
                env={"PATH": "/usr/bin:/bin", "LLVM_PROFILE_FILE": "/dev/null", "ASAN_OPTIONS": "detect_leaks=0"})
            return ran.stdout + ran.stderr if ran.returncode else "nothing"


def is_found(planter, mistake):
    report = planter.report(mistake)
    found = re.search(mistake.report, report)
    if not found:
        print(f"  {mistake.title}: NOT NOTICED; reported was: {report[:1500]}")
    return bool(found)


def main():
    planter = Planter(Path(sys.argv[1]).resolve())
    with ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda mistake: is_found(planter, mistake), MISTAKES))
    print(f"{sum(results)} of {len(results)} mistakes reported when they are run")
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
