"""Whether each translation has every text of the window, whole: check.py LUPDATE"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
from pathlib import Path

FOLDER = Path(__file__).parents[2] / "resources/translations"


def marks(text):
    """What has to stand in a text and its translation alike: places, a menu's letter, an ellipsis."""
    return sorted(re.findall(r"%L?[n\d]", text)), text.count("&"), text.endswith("...")


def problems(message):
    translation = message.find("translation")
    forms = [form.text or "" for form in translation.iter("numerusform")] or [translation.text or ""]
    source = message.find("source").text
    if translation.get("type") or not all(forms):
        yield f"not translated: {source}"
    for form in forms:
        if form and marks(form) != marks(source):
            yield f"not the places, letter or dots of its text: {form}"


def problems_of(file, lupdate):
    with tempfile.TemporaryDirectory() as folder:
        copy = shutil.copy(file, folder)
        subprocess.run([FOLDER / "update", copy], check=True, stdout=subprocess.DEVNULL,
                       env={**os.environ, "LUPDATE": lupdate})
        messages = list(xml.parse(copy).getroot().iter("message"))
    assert len(messages) > 100, "lupdate finds no texts"
    known = sum(1 for _ in xml.parse(file).getroot().iter("message"))
    if known > len(messages):
        yield f"{known - len(messages)} texts that the window no longer has: see {FOLDER}/update"
    for message in messages:
        yield from problems(message)


found = [f"{file.name}: {problem}" for file in sorted(FOLDER.glob("*.ts"))
         for problem in problems_of(file, sys.argv[1])]
print("\n".join(found))
sys.exit(bool(found))
