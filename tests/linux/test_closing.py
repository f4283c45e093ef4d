"""Closing hides; a second start shows the window again."""

from harness.waiting import wait_until


def test_closing_hides_the_window_and_leaves_server_and_page_alone(running):
    running.server.evaluate("window.state = 'kept'")
    running.window().close()
    running.wait_until_hidden()
    assert running.program.poll() is None
    assert running.server.evaluate("window.state") == "kept"


def test_a_second_start_shows_the_same_window_and_ends_with_zero(running):
    first = running.program
    running.server.evaluate("window.state = 'kept'")
    running.window().close()
    running.wait_until_hidden()

    second = running.start()
    assert second.wait(20) == 0
    window = running.window()
    assert window.pid == first.pid
    wait_until("it is active", lambda: running.desktop.screen.active_window() == window.number)
    assert running.server.evaluate("window.state") == "kept"
    assert len(running.switchboard.servers) == 1


def test_a_window_that_is_shown_again_is_where_it_was(running):
    window = running.place(200, 100, 1200, 800)
    before = window.area
    window.close()
    running.wait_until_hidden()
    assert running.start().wait(20) == 0
    wait_until("it is there again", lambda: running.window().area == before)


def test_a_second_start_while_the_window_is_open_changes_nothing(running):
    assert running.start().wait(20) == 0
    assert len(running.windows()) == 1
    assert len(running.switchboard.servers) == 1
    assert running.programs[0].poll() is None


def test_of_two_starts_at_once_one_stays(shell):
    programs = [shell.start(), shell.start()]
    wait_until("one has ended", lambda: any(program.poll() is not None for program in programs))
    assert sorted(str(program.poll()) for program in programs) == ["0", "None"]
    shell.server.wait_for_page()
    assert len(shell.windows()) == 1
    assert len(shell.switchboard.servers) == 1


def test_a_start_as_a_new_instance_runs_beside_with_a_server_of_its_own(running):
    other = running.start("--new-instance")
    running.switchboard.server(1).wait_for_page()
    assert other.poll() is None and running.programs[0].poll() is None
    first, second = (server.start["environment"] for server in running.switchboard.servers)
    for environment in (first, second):
        assert environment["HARBROOK_PORT"] == "47545"
        assert environment["HARBROOK_PORT_FALLBACK"] == "1"
    assert first["HARBROOK_TOKEN"] != second["HARBROOK_TOKEN"]
    # The name is the first one's still.
    assert running.start().wait(20) == 0
    assert len(running.switchboard.servers) == 2


def test_a_start_in_screenshot_mode_runs_beside_and_takes_no_name(running):
    own_name = running.desktop.bus.owner("com.brackenforge.harbrook")
    data = running.folder / "pictures" / ".harbrook"
    data.mkdir(parents=True)
    mode = {"HARBROOK_SHOTS": "1", "HARBROOK_SHOTS_HOME": "pictures"}
    other = running.start(environment=mode)
    running.switchboard.server(1).wait_for_page()
    assert other.poll() is None
    assert running.desktop.bus.owner("com.brackenforge.harbrook") == own_name
    # A relative home counts from the working directory.
    assert (data / "logs" / "server.log").exists()
    assert (data / "shot-window").exists()


def test_without_a_session_bus_each_start_is_a_shell_of_its_own(make_desktop, make_shell):
    shell = make_shell(desktop=make_desktop(bus=False))
    for number in range(2):
        shell.start()
        shell.switchboard.server(number).wait_for_page()
    assert len(shell.windows()) == 2
    for program in shell.programs:
        program.terminate()
        assert program.wait(20) == 0
