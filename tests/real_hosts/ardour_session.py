"""Puts a recording into a session of Ardour 7, whose command-line tools can't, and reads what a session says."""
import base64
import re
import shutil
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def add_recording(folder: Path, name: str, wave: Path, channels: int, frames: int):
    """Places `wave` at the start of the track "Voice", without fades, and makes it the range that is exported."""
    shutil.copy(wave, next((folder / "interchange").iterdir()) / "audiofiles" / wave.name)
    path = folder / f"{name}.ardour"
    tree = ElementTree.parse(path)
    session = tree.getroot()
    next_id = int(session.get("id-counter"))
    # Times are in a unit that all common rates divide.
    length = frames * int(session.find("TempoMap").get("superclocks-per-second")) // int(session.get("sample-rate"))

    def new_id():
        nonlocal next_id
        next_id += 1
        return str(next_id)

    sources = [new_id() for _ in range(channels)]
    for channel, source in enumerate(sources):
        ElementTree.SubElement(session.find("Sources"), "Source", {
            "id": source, "name": wave.name, "type": "audio", "flags": "", "channel": str(channel), "origin": "",
            "gain": "1"})
    region = {
        "id": new_id(), "name": wave.stem, "type": "audio", "first-edit": "nothing", "start": "a0",
        "length": f"a{length}@a0", "position": "a0", "whole-file": "0", "opaque": "1", "muted": "0", "locked": "0",
        "automatic": "0", "external": "0", "import": "0", "hidden": "0", "envelope-active": "0",
        "default-fade-in": "0", "default-fade-out": "0", "fade-in-active": "0", "fade-out-active": "0",
        "scale-amplitude": "1", "layering-index": "0", "channels": str(channels)}
    for channel, source in enumerate(sources):
        region[f"source-{channel}"] = region[f"master-source-{channel}"] = source
    track = next(route for route in session.iter("Route") if route.get("name") == "Voice")
    playlist = next(each for each in session.iter("Playlist") if each.get("orig-track-id") == track.get("id"))
    ElementTree.SubElement(playlist, "Region", region)
    ElementTree.SubElement(session.find("Locations"), "Location", {
        "id": new_id(), "name": "session", "start": "a0", "end": f"a{length}", "flags": "IsSessionRange",
        "locked": "0", "position-lock-style": "AudioTime"})
    session.set("id-counter", str(next_id + 1))
    tree.write(path, encoding="UTF-8", xml_declaration=True)
