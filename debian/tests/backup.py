"""Writes a backup of one photo, as a handset of system version 2 left it, into the user's root."""
import pathlib
import plistlib
import sys

folder = pathlib.Path(sys.argv[1], "Library/Application Support/MobileSync/Backup/one")
folder.mkdir(parents=True)
files = plistlib.dumps({"Files": {"a": {"Domain": "HomeDomain"}}})
info = {"Device Name": "Handset", "Product Version": "2.2.1"}
(folder / "Info.plist").write_bytes(plistlib.dumps(info))
(folder / "Manifest.plist").write_bytes(plistlib.dumps({"Data": files}))
(folder / "a.mdinfo").write_bytes(plistlib.dumps({"Path": "Library/Media/IMG_0001.JPG"}))
(folder / "a.mddata").write_bytes(b"the bytes of a photo")
