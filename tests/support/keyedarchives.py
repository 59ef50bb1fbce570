# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes keyed archives with Python's plistlib, in the form of the desktop that they come from.

Usage: keyedarchives.py FOLDER     writes the archives for the tests of reading
       keyedarchives.py FILE       (an archive) prints it as JSON, with references resolved
"""

import json
import os
import plistlib
import struct
import sys
import zlib
from plistlib import UID


class Archive:
    def __init__(self):
        self.objects = ["$null"]
        self.top = {}
        self.classes = {}

    def add(self, value):
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    def cls(self, *names):
        if names not in self.classes:
            self.classes[names] = self.add({"$classname": names[0], "$classes": list(names)})
        return self.classes[names]

    def obj(self, names, **keys):
        return self.add({**{k.replace("__", "."): v for k, v in keys.items()}, "$class": self.cls(*names)})

    def array(self, items, mutable=False):
        names = ("NSMutableArray", "NSArray", "NSObject") if mutable else ("NSArray", "NSObject")
        return self.obj(names, NS__objects=list(items))

    def mutable_string(self, text):
        return self.obj(("NSMutableString", "NSString", "NSObject"), NS__string=text)

    def data(self, content):
        return self.obj(("NSMutableData", "NSData", "NSObject"), NS__data=content)

    def number(self, **keys):
        return self.obj(("NSNumber", "NSValue", "NSObject"), **keys)

    def color(self, space, **keys):
        return self.obj(("NSColor", "NSObject"), NSColorSpace=space, **keys)

    def image(self, representations, names=("NSBitmapImageRep", "NSImageRep", "NSObject")):
        pairs = [self.array([self.add(0), self.obj(names, NSTIFFRepresentation=r)]) for r in representations]
        return self.obj(("NSImage", "NSObject"), NSImageFlags=549453824, NSSize=self.add("{4, 3}"),
                        NSReps=self.array(pairs, mutable=True))

    def dump(self, path):
        with open(path, "wb") as file:
            plistlib.dump({"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": self.top,
                           "$objects": self.objects}, file, fmt=plistlib.FMT_BINARY, sort_keys=False)


def tiff(width, height, rgb):
    """An uncompressed RGB picture of one color, built by hand."""
    pixels = bytes(rgb) * (width * height)
    entries = [(256, 3, 1, width), (257, 3, 1, height), (258, 3, 3, 0), (259, 3, 1, 1), (262, 3, 1, 2),
               (273, 4, 1, 0), (277, 3, 1, 3), (278, 3, 1, height), (279, 4, 1, len(pixels))]
    bits = 8 + 2 + 12 * len(entries) + 4
    out = b"MM\0*" + struct.pack(">IH", 8, len(entries))
    for tag, kind, count, value in entries:
        value = {258: bits, 273: bits + 6}.get(tag, value)
        packed = struct.pack(">HH", value, 0) if kind == 3 and count == 1 else struct.pack(">I", value)
        out += struct.pack(">HHI", tag, kind, count) + packed
    return out + struct.pack(">I", 0) + struct.pack(">HHH", 8, 8, 8) + pixels


def values(path):
    a = Archive()
    shared = a.add("shared \u00e9 \U0001f4f7")
    srgb = a.obj(("NSColorSpace", "NSObject"), NSID=7)
    green = a.color(1, NSRGB=b"0 1 0\0")
    a.top = {
        "plain": shared, "again": shared, "mutable": a.mutable_string("mutable"), "empty": a.add(""),
        "int": a.add(-5), "double": a.add(0.1), "inlineInt": 1 << 40, "inlineReal": 1.5, "inlineBool": True,
        "boolObject": a.add(True), "none": UID(0), "nan": a.add(float("nan")),
        "intNumber": a.number(NS__intval=12), "realNumber": a.number(NS__dblval=12.5),
        "boolNumber": a.number(NS__boolval=True), "decimal": a.number(NS__mantissa=b"\5\0"),
        "array": a.array([shared, UID(0), shared]), "mutableArray": a.array([a.add(1)], mutable=True),
        "calibrated": a.color(1, NSRGB=b"0.2 0.4 0.6\0"), "device": a.color(2, NSRGB=b"0.2 0.4 0.6 0.5"),
        "white": a.color(3, NSWhite=b"0.6 0.4\0"), "deviceWhite": a.color(4, NSWhite=b"1\0"),
        "cmyk": a.color(5, NSCMYK=b"0 1 1 0 1\0"),
        "catalogue": a.color(6, NSCatalogName=a.add("System"), NSColorName=a.add("textColor"), NSColor=green),
        "srgb": a.color(1, NSRGB=b"0.1 0.1 0.1\0", NSComponents=b"1 0.2 0.4 1", NSCustomColorSpace=srgb),
        "wide": a.color(1, NSRGB=b"1.2 -0.5 0.4\0"), "pattern": a.color(10, NSImage=UID(0)),
        "image": a.image([a.data(b"first"), a.add(b"second")]),
    }
    a.dump(path)


def broken(path):
    a = Archive()
    loop = a.array([UID(len(a.objects) + 1)])
    mutual = a.add({})
    a.objects[mutual.data] = {"NSColorSpace": 6, "NSColor": mutual, "$class": a.cls("NSColor", "NSObject")}
    a.top = {
        "far": UID(4000), "furthest": UID(0xffffffff), "null": a.add("$null"), "reference": a.add(UID(1)),
        "loop": loop, "color": mutual, "noClass": a.add({"NS.objects": [UID(1)]}),
        "badClass": a.add({"NS.objects": [UID(1)], "$class": UID(999)}),
        "selfClass": a.add({"NS.objects": [UID(1)], "$class": UID(len(a.objects))}),
        "notAnArray": a.obj(("NSDictionary", "NSObject"), NS__objects=[UID(1)]),
        "noObjects": a.obj(("NSArray", "NSObject")), "wrongObjects": a.obj(("NSArray", "NSObject"), NS__objects="x"),
        "badColor": a.color(1, NSRGB=b"1 nan 0\0"), "shortColor": a.color(1, NSRGB=b"1 0\0"),
        "foreignColor": a.color(99, NSRGB=b"1 0 0\0"),
        "vector": a.image([a.data(b"pdf")], ("NSPDFImageRep", "NSImageRep", "NSObject")),
    }
    a.dump(path)


def bombs(folder):
    level = ["x"]
    for _ in range(8):
        level = [level] * 100
    a = Archive()
    a.top = {"bomb": level}
    a.dump(os.path.join(folder, "unfolds.plist"))
    a.objects += [level]
    a = Archive()
    a.top = {str(i): 0 for i in range(2000)}
    a.dump(os.path.join(folder, "keys.plist"))
    for name, key in ("ascii", "x\0y"), ("utf16", "\u00e9\0y"):
        a = Archive()
        a.top = {key: 0}
        a.dump(os.path.join(folder, "null-in-%s-key.plist" % name))
    nest = []
    for _ in range(500):
        nest = [nest]
    a = Archive()
    a.top = {"nest": nest}
    a.dump(os.path.join(folder, "nested.plist"))
    # A thousand references to one array: read one by one they would be larger than the file.
    a = Archive()
    wide = a.array([a.add("x")] * 100000)
    a.top = {"many": a.array([wide] * 1000)}
    text = a.add("x" * 1000000)
    a.top["texts"] = a.array([text] * 100000)
    a.dump(os.path.join(folder, "wide.plist"))


def preset(a, **changes):
    """A watermark preset with a few values; the others are absent."""
    values = {"WPName": a.add("Old"), "WPType": a.add("Image"), "WPAngle": a.add(270), "WPStroke": True,
              "WPFontSize": a.add(7.9), "WPTextTokens": a.array([a.add("\u00a9 "), a.mutable_string("creator")]),
              "WPFillColor": a.color(5, NSCMYK=b"0 1 1 0 1\0"), "WPBackgroundPadding": a.add(12),
              "WPShadowAngle": a.add(0.7853981633974483), "WPBackgroundPaddingUnit": a.add("% of width"),
              "WPAssignedSavingPreset": 57, "WPUnknown": a.add("later")}
    return a.obj(("WPreset", "NSObject"), **{**values, **changes})


def presets(folder):
    def write(name, build, application="Quorvel Plexa", version=1.0):
        a = Archive()
        items = build(a)
        a.top = {"Application": a.add(application), "FileVersion": version, "WPresets": items}
        a.dump(os.path.join(folder, name + ".pxwpr"))

    image = [b"nonsense", tiff(2, 2, (255, 0, 0)), tiff(4, 3, (0, 0, 255)), tiff(3, 3, (0, 255, 0))]
    write("old", lambda a: a.array([
        preset(a, WPImage=a.image([a.data(i) for i in image])),
        preset(a, WPAngle=a.add(90), WPFontSize=a.add("8"), WPName=UID(0), WPWidth=a.add(1 << 40),
               WPOpacity=a.number(NS__intval=40), WPBackgroundOpacity=a.number(NS__mantissa=b"\5\0"),
               WPTextTokens=a.array([UID(0), a.add("x"), a.data(b"x")]), WPShadow=a.add("yes"),
               WPFillColor=a.color(6, NSCatalogName=a.add("Shop"), NSColorName=a.add("Red")), WPStrokeColor=UID(0)),
        preset(a, WPAngle=a.add(-200.0), WPAssignedSavingPreset=58),
        preset(a, WPAngle=UID(4000), WPShadowAngle=a.add(float("nan")), WPTextTokens=a.add("no list")),
    ], mutable=True), "Quorvel Plexa 1")
    shared = lambda a: (lambda p: a.array([p, p]))(preset(a, WPBackgroundPaddingTop=a.add(3)))
    write("today", shared, version=struct.unpack("f", struct.pack("f", 1.2))[0])
    write("later", shared, version=1.3)
    write("empty", lambda a: a.array([]))
    write("foreign", shared, "Quorvel Other")
    write("no-version", shared, version=0)
    write("no-list", lambda a: a.add("x"))
    write("no-preset", lambda a: a.array([UID(0), a.add("x")]))
    write("some", lambda a: a.array([UID(0), a.add("x"), preset(a), UID(4000), a.obj(("NSObject",), WPName="x")]))
    named = lambda a, name, picture: preset(a, WPName=a.add(name), WPImage=picture, WPWidth=a.add(50),
                                              WPWidthUnit=a.add("% of width"), WPOpacity=a.add(100))
    pixels = lambda a, tiffs, *names: a.image([a.data(t) for t in tiffs], *names)
    red = tiff(40, 30, (255, 0, 0))
    write("pictures", lambda a: a.array([
        named(a, "good", pixels(a, [b"nonsense", red])),
        named(a, "nonsense", pixels(a, [b"nonsense"])),
        named(a, "no directory", pixels(a, [red[:30]])),
        named(a, "no color space", pixels(a, [red.replace(struct.pack(">HHIH", 262, 3, 1, 2),
                                                          struct.pack(">HHIH", 262, 3, 1, 77))])),
        named(a, "vector", pixels(a, [b"%PDF-1.4"], ("NSPDFImageRep", "NSImageRep", "NSObject"))),
        named(a, "foreign", a.obj(("NSDictionary", "NSObject"), NS__keys=[a.add("key")], NS__objects=[UID(0)])),
        named(a, "text", a.add("a text")),
        named(a, "absurd", pixels(a, [tiff(36000, 36000, ())])),
        named(a, "ends early", pixels(a, [red[:-1000]])),
        named(a, "smaller one left", pixels(a, [red[:-1000], tiff(4, 3, (0, 0, 255))])),
    ]))
    # 64 GB when decoded.
    large = tiff(8000, 8000, ())
    write("large", lambda a: a.array([named(a, str(i), pixels(a, [large])) for i in range(256)]))
    write("pointless", lambda a: a.array([UID(4000)]))


def as_json(path):
    with open(path, "rb") as file:
        archive = plistlib.load(file)
    objects = archive["$objects"]

    def follow(value, seen=()):
        if isinstance(value, UID):
            if value.data in seen:
                return "(loop)"
            return None if value.data == 0 else follow(objects[value.data], seen + (value.data,))
        if isinstance(value, dict):
            return {k: follow(v, seen)["$classname"] if k == "$class" else follow(v, seen) for k, v in value.items()}
        if isinstance(value, list):
            return [follow(v, seen) for v in value]
        if isinstance(value, bytes):
            return value.decode("latin-1") if len(value) < 100 else "%d bytes, %08x" % (len(value), zlib.crc32(value))
        return value

    archive["$top"] = follow(archive["$top"])
    archive["$objects"] = objects[0]
    print(json.dumps(archive, ensure_ascii=True))


if os.path.isdir(sys.argv[1]):
    values(os.path.join(sys.argv[1], "values.plist"))
    broken(os.path.join(sys.argv[1], "broken.plist"))
    bombs(sys.argv[1])
    presets(sys.argv[1])
else:
    as_json(sys.argv[1])
