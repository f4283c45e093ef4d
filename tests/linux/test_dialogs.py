"""What a page's alert, confirm and prompt come to."""

import pytest

from harness.waiting import wait_until


def ask(shell, expression):
    """Has the page ask; its answer is in window.answer once there is one."""
    shell.server.evaluate(f"void setTimeout(() => {{ window.answer = [{expression}] }}, 50)")


def button(shell, name):
    return shell.desktop.accessibility().wait_for(shell.pid, role="button", name=name)


def answer(shell):
    return wait_until("the page has its answer", lambda: shell.server.evaluate("window.answer"))


def test_an_alert_has_the_pages_text_and_one_button(running):
    ask(running, "alert('All \\u201cdone\\u201d.')")
    running.wait_for_text("All “done”.")
    button(running, "OK").act()
    assert answer(running) == [None]


@pytest.mark.parametrize("choice, value", [("OK", True), ("Cancel", False)])
def test_a_confirm_is_answered_with_the_button(running, choice, value):
    ask(running, "confirm('Stop it?')")
    running.wait_for_text("Stop it?")
    button(running, choice).act()
    assert answer(running) == [value]


def test_escape_is_cancel(running):
    ask(running, "confirm('Stop it?')")
    running.wait_for_text("Stop it?")
    wait_until("the sheet has the keyboard", lambda: len(running.windows()) == 2)
    running.desktop.screen.press("Escape")
    assert answer(running) == [False]


def test_closing_the_sheet_is_cancel(running):
    main = running.window()
    ask(running, "confirm('Stop it?')")
    running.wait_for_text("Stop it?")
    sheet = wait_until("the sheet is shown", lambda: [one for one in running.windows() if one != main])[0]
    sheet.close()
    assert answer(running) == [False]


def test_a_prompt_is_answered_with_none_at_once(running):
    ask(running, "prompt('Name?', 'default')")
    assert answer(running) == [None]
    assert len(running.windows()) == 1


def test_the_status_is_polled_while_a_dialog_is_open(running):
    ask(running, "confirm('Stop it?')")
    running.wait_for_text("Stop it?")
    # Whatever was under way when the dialog came up, and two rounds more.
    running.server.wait_for_polls(3)
    button(running, "Cancel").act()
    assert answer(running) == [False]


def test_the_program_quits_while_a_dialog_is_open(running):
    ask(running, "confirm('Stop it?')")
    running.wait_for_text("Stop it?")
    running.quit()
    running.wait_until_ended()


def test_one_dialog_after_the_other(running):
    ask(running, "alert('One'), confirm('Two'), prompt('Three'), confirm('Four')")
    for text, choice in [("One", "OK"), ("Two", "OK"), ("Four", "Cancel")]:
        running.wait_for_text(text)
        button(running, choice).act()
    assert answer(running) == [None, True, None, False]


def test_a_page_that_asks_to_stay_is_left_all_the_same(running):
    # The engine listens to a page only once the user has done something in it.
    running.server.evaluate(
        "void (addEventListener('beforeunload', event => { fetch('/asked', {keepalive: true}); event.preventDefault() }),"
        " addEventListener('click', () => { window.clicked = true }))"
    )
    running.wait_until_drawn()
    running.desktop.screen.click(*running.window().area.center)
    wait_until("the click has arrived", lambda: running.server.evaluate("window.clicked ?? false"))
    running.server.run("location.reload()")
    running.server.wait_for_request("/asked")
    running.server.wait_for_page(2)
    assert len(running.windows()) == 1
