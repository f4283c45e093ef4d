"""Desktop portals with one ability each, which the test answers in the place of user and desktop."""

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


SETTINGS = "org.freedesktop.portal.Settings"
SETTINGS_DESCRIPTION = f"""
<node>
  <interface name="{SETTINGS}">
    <method name="Read">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
    </method>
    <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  </interface>
</node>"""

NO_PREFERENCE, PREFERS_DARK, PREFERS_LIGHT = 0, 1, 2


class SettingsPortal:
    """A desktop portal that knows nothing but the user's colour scheme. It comes with arrive()."""

    def __init__(self, desktop, scheme):
        self.bus = Bus(desktop.bus.address)
        self.scheme = scheme
        self.bus.export(PATH, SETTINGS_DESCRIPTION, self._answer)

    def arrive(self):
        self.bus.take_name(NAME)
        return self

    def leave(self):
        self.bus.drop_name(NAME)

    def close(self):
        self.bus.close()

    def _answer(self, method, arguments):
        assert arguments == ("org.freedesktop.appearance", "color-scheme")
        return GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", self.scheme)),))

    def choose(self, scheme):
        """The user changes the setting."""
        self.scheme = scheme
        changed = ("org.freedesktop.appearance", "color-scheme", GLib.Variant("u", scheme))
        self.bus.emit(PATH, SETTINGS, "SettingChanged", GLib.Variant("(ssv)", changed))
