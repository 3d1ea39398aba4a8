#!/usr/bin/env python3
"""Makes the reference's search find a class by each word of its name: `status` finds GCL_Status.

  class_words.py HTML      the folder with the pages
"""
import pathlib
import re
import sys

search = pathlib.Path(sys.argv[1]) / "search"
index = (search / "searchdata.js").read_text(encoding="utf-8")
letters = re.search(r'0: "(.*?)"', index).group(1)  # the n-th letter's entries are in all_<n, hex>.js

entries = {}
for path in search.glob("classes_*.js"):
    for name, rest in re.findall(r"\['\w+',\['(\w+)',(\[.*?\])\]\]", path.read_text(encoding="utf-8")):
        for word in re.findall(r"[A-Z][a-z]+", name):
            entries.setdefault(word.lower(), set()).add((name, rest))

added = 0
for word, classes in sorted(entries.items()):
    if word[0] not in letters:
        continue
    path = search / f"all_{letters.index(word[0]):x}.js"
    text = path.read_text(encoding="utf-8")
    rows = "".join(
        f",\n  ['{word}_{name.lower()}',['{name}',{rest}]]" for name, rest in sorted(classes))
    path.write_text(text.replace("\n];", rows + "\n];"), encoding="utf-8")
    added += len(classes)
print(f"{added} words of class names in the search")
sys.exit(added == 0)
