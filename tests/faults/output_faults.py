"""What the dashboard's server may print: too much, what is no text, and something at the very last."""

import random

from harness.server import READY, Plan, announce, drain, last_words, say_bytes, serve

from checks import expect_log_is, flood_numbered
from matrix import ENDS, GROWTH, fault

MEGABYTE = 1_000_000

# All that the server has printed is kept, by design: the text itself, and no more than this beside it.
BESIDE_THE_TEXT = 0.005


def flood(trial, shell, size):
    server = trial.start(shell)
    server.wait_for_page()
    shell.wait_until_drawn()
    server.wait_for_request("/api/state")
    with trial.keeping(shell, GROWTH + int(size * BESIDE_THE_TEXT) // 1024) as kept, trial.answering(shell):
        flood_numbered(trial, server, size, shell.log, kept)
        trial.expect(server.evaluate("6 * 7") == 42, "the page no longer works")
    trial.quit(shell)


@fault("the server floods 64 MB", quick=1, whole=20)
def floods(trial):
    shell = trial.shell()
    for _ in trial.rounds():
        flood(trial, shell, 64 * MEGABYTE)


@fault("the server floods 1 GB", quick=0, whole=2)
def floods_a_gigabyte(trial):
    shell = trial.shell()
    for _ in trial.rounds():
        flood(trial, shell, 1000 * MEGABYTE)


def noise(seed):
    """Bytes of every kind: zero bytes, lines without end, halves of characters, what is no UTF-8."""
    source = random.Random(seed)
    pieces = [source.randbytes(source.randrange(1, 100_000)), b"\0" * 5000, "\N{SNOWMAN}".encode()[:2], b"\xff\xfe\n"]
    source.shuffle(pieces)
    return b"".join(pieces)


@fault("the server prints binary", quick=2, whole=100)
def prints_binary(trial):
    for number in trial.rounds():
        before, after = noise(2 * number), noise(2 * number + 1)
        # An announcement counts when the read in which it comes is text.
        announcement = [drain(), announce(before="\n"), drain()]
        shell = trial.shell(Plan([serve(), say_bytes(before), *announcement]))
        server = trial.start(shell)
        server.wait_for_page()
        shell.wait_until_drawn()
        with trial.keeping(shell), trial.answering(shell):
            server.do(say_bytes(after))
            announced = f"\nHARBROOK_PORT {server.port}\n".encode()
            expect_log_is(trial, shell.log, before + announced + after)
        trial.quit(shell)


@fault("the server prints most at its end", quick=3, whole=100, unmeasured=ENDS)
def prints_at_the_end(trial):
    words = "".join(f"last word {number}\n" for number in range(60_000))
    shell = trial.shell(Plan([*READY, last_words(words)]))
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        server.wait_for("done", lambda event: event["step"] == "last-words")
        trial.quit(shell)
        expect_log_is(trial, shell.log, f"HARBROOK_PORT {server.port}\n{words}".encode())
