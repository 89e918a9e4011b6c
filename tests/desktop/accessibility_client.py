"""Looks at Veyla the way assistive technology does.

tree   prints a line for every child of the application: identifier, label, role, states, rectangle
watch  prints "ready", then a line for every event: type, first detail, text or element
"""

import sys

import pyatspi

STATES = {
    pyatspi.STATE_SELECTABLE: "selectable",
    pyatspi.STATE_SELECTED: "selected",
    pyatspi.STATE_SHOWING: "showing",
    pyatspi.STATE_VISIBLE: "visible",
}


def describe(element):
    identifier = element.get_accessible_id()
    if element.get_attributes() != {"id": identifier}:
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


if sys.argv[1] == "tree":
    for application in pyatspi.Registry.getDesktop(0):
        if application.name == "veyla":
            for child in application:
                print(describe(child))
else:
    pyatspi.Registry.registerEventListener(
        report, "object:announcement", "object:property-change:accessible-name",
        "object:state-changed:selected", "object:state-changed:showing", "object:children-changed")
    print("ready", flush=True)
    pyatspi.Registry.start()
