"""A desktop portal with nothing but a file chooser, which the test answers in the user's place."""

from gi.repository import GLib

from .bus import Bus
from .waiting import wait_until

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
CHOOSER = "org.freedesktop.portal.FileChooser"
REQUEST = "org.freedesktop.portal.Request"

DESCRIPTION = f"""
<node>
  <interface name="{CHOOSER}">
    <method name="OpenFile">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{{sv}}" direction="in"/>
      <arg type="o" direction="out"/>
    </method>
    <property name="version" type="u" access="read"/>
  </interface>
</node>"""

CHOSEN, CANCELLED = 0, 1


class Portal:
    def __init__(self, desktop, version=4):
        self.bus = Bus(desktop.bus.address)
        # What was asked: parent, title, options.
        self.questions = []
        self.bus.export(PATH, DESCRIPTION, self._answer, {"version": GLib.Variant("u", version)})
        self.bus.take_name(NAME)

    def close(self):
        self.bus.close()

    def _answer(self, method, arguments):
        self.questions.append(arguments)
        return GLib.Variant("(o)", (self._request(arguments[2]["handle_token"]),))

    def _request(self, token):
        sender = self.bus.owner("com.brackenforge.harbrook")[1:].replace(".", "_")
        return f"{PATH}/request/{sender}/{token}"

    def question(self, number=0):
        wait_until(f"question {number}", lambda: len(self.questions) > number)
        return self.questions[number]

    def respond(self, response, *addresses):
        path = self._request(self.questions[-1][2]["handle_token"])
        results = {"uris": GLib.Variant("as", addresses)} if addresses else {}
        self.bus.emit(path, REQUEST, "Response", GLib.Variant("(ua{sv})", (response, results)))
