"""The window of the app, found and driven as assistive technology does it. A process can do so in one session only."""
import time

PATIENCE = 20


class AccessibleWindow:
    """Of the running application of which `is_it` is true; waits for it."""

    def __init__(self, is_it):
        self._is_it = is_it
        self.application = self.wait(self._application, "the application")

    def _application(self):
        import pyatspi
        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and self._is_it(application):
                return application if application.childCount > 0 else None
        return None

    def forget(self):
        """Has the library ask again for what it knows of the window."""
        application = getattr(self, "application", None)
        if application is not None:
            application.clear_cache()

    def wait(self, condition, what):
        """What `condition` returns as soon as that is true."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            try:
                self.forget()
                found = condition()
            except Exception:  # pylint: disable=broad-except  # an object that has gone meanwhile
                found = None
            if found:
                return found
            time.sleep(0.05)
        raise AssertionError(f"waited in vain for {what}; on the screen: {self.texts()}")

    def walk(self, node=None):
        """All objects, also those that are not shown."""
        if node is None:
            node = self.application
        yield node
        for child in node:
            if child is not None:
                yield from self.walk(child)

    def shown(self):
        """The objects of the window, also those of its other pages, without those that are hidden."""
        import pyatspi

        def below(node):
            states = node.getState()
            if node.getRole() != pyatspi.ROLE_APPLICATION and not states.contains(pyatspi.STATE_VISIBLE):
                return
            yield node
            for child in node:
                if child is not None:
                    yield from below(child)
        return below(self.application)

    def nodes(self):
        """These objects with their names, in which a blank that does not break is a blank."""
        return [(node, (node.name or "").replace("\u00a0", " ")) for node in self.shown()]

    def texts(self):
        try:
            return [name for _, name in self.nodes() if name and not name.startswith(("Adw", "Gtk"))]
        except Exception as why:  # pylint: disable=broad-except
            return [f"nothing readable: {why}"]

    def find(self, role, name):
        """The object of a role that is called `name`, else whose name holds it; waits for it."""
        def found():
            nodes = [(node, text) for node, text in self.nodes() if node.getRoleName() == role]
            exact = [node for node, text in nodes if text == name]
            return (exact or [node for node, text in nodes if name in text] or [None])[0]
        return self.wait(found, f"the {role} “{name}”")

    def shows(self, text):
        """Waits for a text."""
        return self.wait(lambda: any(text in name for _, name in self.nodes()), f"“{text}”")

    def lacks(self, text):
        """Waits until a text has gone."""
        return self.wait(lambda: not any(text in name for _, name in self.nodes()), f"“{text}” to go")

    def click(self, name, role="push button"):
        self.find(role, name).queryAction().doAction(0)

    def is_selected(self, page):
        """Whether the tab of a page is the chosen one."""
        import pyatspi
        return any(node.getRoleName() == "page tab" and text == page
                   and node.getState().contains(pyatspi.STATE_SELECTED) for node, text in self.nodes())

    def go(self, page):
        self.click(page, "page tab")

    def field(self, name):
        """The text field of a row called `name`."""
        def found():
            for node, text in self.nodes():
                if text == name and node.getRoleName() in ("text", "entry"):
                    return node
            return None
        return self.wait(found, f"the field “{name}”")

    def type_into(self, name, text):
        self.field(name).queryEditableText().setTextContents(text)
