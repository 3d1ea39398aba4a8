#!/usr/bin/env python3
"""Counts the classes and members of the reference, and fails when one has no text or a class no subsystem.

  check_texts.py XML       the folder with Doxygen's XML
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as ET


def has_text(element):
    parts = (element.find("briefdescription"), element.find("detaileddescription"))
    return any("".join(part.itertext()).strip() for part in parts if part is not None)


def is_the_languages(member, class_name):
    """Destructors, copies and moves, and what is deleted: everybody knows what they do."""
    name, arguments = member.findtext("name"), member.findtext("argsstring") or ""
    copies = re.match(rf"\({class_name}(<.*>)? ?(const ?&|&&)", arguments)
    return (name.startswith("~") or arguments.replace(" ", "").endswith("=delete")
            or (name in (class_name, "operator=") and copies is not None))


checked, bare, in_group = 0, set(), set()
classes = set()
for path in pathlib.Path(sys.argv[1]).glob("*.xml"):
    for compound in ET.parse(path).getroot().iter("compounddef"):
        kind, name = compound.get("kind"), compound.findtext("compoundname")
        if compound.get("prot") == "private":
            continue
        if kind == "group":
            in_group.update(inner.text for inner in compound.iter("innerclass"))
        if kind in ("class", "struct"):
            checked += 1
            classes.add(name)
            if not has_text(compound):
                bare.add(name)
        if kind not in ("class", "struct", "file", "group"):
            continue
        for member in compound.iter("memberdef"):
            own_class = re.sub(r"<.*", "", name).split("::")[-1]
            if (member.get("prot") == "private" or member.get("kind") == "friend"
                    or is_the_languages(member, own_class)):
                continue
            checked += 1
            if not has_text(member):
                bare.add(f"{name}: {member.findtext('name')}{member.findtext('argsstring') or ''}")

bare.update(f"{name}: in no subsystem" for name in classes
            if "::" not in name and "<" not in name and name not in in_group)
print(f"{checked} classes and members, {len(bare)} without text")
print("\n".join(sorted(bare)))
sys.exit(bool(bare) or checked == 0)
