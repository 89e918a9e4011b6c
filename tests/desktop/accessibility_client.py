"""Looks at Veyla the way assistive technology does.

tree   prints a line for every child of the application: identifier, label, role, states, rectangle
all    prints the same for every element of the application that is on screen
press, set, type
       use the element of that identifier or name: press it, give it a value, or replace its text
watch  prints "ready", then a line for every event: type, first detail, text or element
focus  prints "ready", then the name or identifier of every element that gets the keyboard
"""

import sys

import pyatspi
from gi.repository import GLib

STATES = {
    pyatspi.STATE_CHECKED: "checked",
    pyatspi.STATE_SELECTABLE: "selectable",
    pyatspi.STATE_SELECTED: "selected",
    pyatspi.STATE_SHOWING: "showing",
    pyatspi.STATE_VISIBLE: "visible",
}


def describe(element):
    identifier = element.get_accessible_id()
    if identifier and element.get_attributes() != {"id": identifier}:
        identifier += " is not in the attributes"
    held = element.getState()
    states = " ".join(name for state, name in STATES.items() if held.contains(state))
    rect = element.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    place = f"{rect.width}x{rect.height}+{rect.x}+{rect.y}"
    return " | ".join([identifier, element.name, element.getRoleName(), states, place])


def report(event):
    subject = event.any_data
    if not isinstance(subject, str):
        subject = event.source.get_accessible_id() or event.source.name
    print(event.type, event.detail1, subject, flush=True)


def report_focus(event):
    if event.detail1 == 1:
        print(event.source.name or event.source.get_accessible_id(), flush=True)


def elements_on_screen(element):
    # What goes while it is being read is no longer on screen.
    try:
        shown = [child for child in element
                 if child and child.getState().contains(pyatspi.STATE_SHOWING)]
    except (GLib.Error, LookupError):
        return
    for child in shown:
        yield child
        yield from elements_on_screen(child)


def print_on_screen(element):
    try:
        print(describe(element))
    except (GLib.Error, LookupError, NotImplementedError):
        pass


def veyla():
    return [each for each in pyatspi.Registry.getDesktop(0) if each and each.name == "veyla"]


def use(mode, name, value):
    for application in veyla():
        for element in elements_on_screen(application):
            try:
                if name not in (element.name, element.get_accessible_id()):
                    continue
                if mode == "press":
                    actions = element.queryAction()
                    names = [actions.getName(index) for index in range(actions.nActions)]
                    wanted = [index for index, each in enumerate(names) if each != "SetFocus"]
                    return actions.doAction(wanted[0])
                if mode == "set":
                    element.queryValue().currentValue = float(value)
                    return True
                return element.queryEditableText().setTextContents(value)
            except (NotImplementedError, IndexError, GLib.Error):
                # A label beside a control bears the same name; others go meanwhile.
                continue
    return False


mode = sys.argv[1]
if mode == "tree":
    for application in veyla():
        for child in application:
            print(describe(child))
elif mode == "all":
    for application in veyla():
        for element in elements_on_screen(application):
            print_on_screen(element)
elif mode in ("press", "set", "type"):
    sys.exit(not use(mode, sys.argv[2], sys.argv[-1]))
elif mode == "focus":
    pyatspi.Registry.registerEventListener(report_focus, "object:state-changed:focused")
    print("ready", flush=True)
    pyatspi.Registry.start()
else:
    pyatspi.Registry.registerEventListener(
        report, "object:announcement", "object:property-change:accessible-name",
        "object:state-changed:selected", "object:state-changed:showing", "object:children-changed")
    print("ready", flush=True)
    pyatspi.Registry.start()
