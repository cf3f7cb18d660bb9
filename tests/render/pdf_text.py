#!/usr/bin/python3
"""Prints the text of a PDF written by cairo, one shown string per line: the glyph codes of
each Tj/TJ are mapped to characters through the ToUnicode map of the font in use. Enough
for cairo's own output (FlateDecode streams, Identity-H fonts, bfchar and bfrange maps)."""
import re
import sys
import zlib

data = open(sys.argv[1], 'rb').read()
objects = {int(n): body for n, body in re.findall(rb'(\d+) 0 obj(.*?)endobj', data, re.S)}


def stream(number):
    body = objects[number]
    raw = re.search(rb'stream\r?\n(.*?)endstream', body, re.S).group(1)
    return zlib.decompress(raw) if b'FlateDecode' in body else raw


def to_unicode(number):
    cmap, text = {}, stream(number).decode('latin-1')
    for block in re.findall(r'beginbfchar(.*?)endbfchar', text, re.S):
        for code, chars in re.findall(r'<([0-9a-fA-F]+)>\s*<([0-9a-fA-F]+)>', block):
            cmap[int(code, 16)] = bytes.fromhex(chars).decode('utf-16-be')
    for block in re.findall(r'beginbfrange(.*?)endbfrange', text, re.S):
        for lo, hi, first in re.findall(r'<([0-9a-fA-F]+)>\s*<([0-9a-fA-F]+)>\s*<([0-9a-fA-F]+)>',
                                        block):
            start = int(first, 16)
            for i, code in enumerate(range(int(lo, 16), int(hi, 16) + 1)):
                cmap[code] = chr(start + i)
    return cmap


fonts = {}
for number, body in objects.items():
    for name, ref in re.findall(rb'/(f-\d+-\d+) (\d+) 0 R', body):
        font = objects.get(int(ref), b'')
        unicode = re.search(rb'/ToUnicode (\d+) 0 R', font)
        if unicode:
            fonts[name.decode()] = (to_unicode(int(unicode.group(1))), b'/Subtype /Type0' in font)

pages = [int(ref) for body in objects.values() for ref in re.findall(rb'/Contents (\d+) 0 R', body)]
for number in pages:
    content = stream(number).decode('latin-1')
    font = None
    for token in re.finditer(r'/(f-\d+-\d+) [\d.]+ Tf'
                             r'|\[((?:\s*(?:<[0-9a-fA-F]*>|-?[\d.]+))*)\s*\]\s*TJ'
                             r'|<([0-9a-fA-F]*)>\s*Tj', content):
        if token.group(1):
            font = fonts.get(token.group(1))
            continue
        if font is None:
            continue
        cmap, wide = font
        hexes = re.findall(r'<([0-9a-fA-F]*)>', token.group(2)) if token.group(2) else [token.group(3)]
        width = 4 if wide else 2
        line = ''
        for h in hexes:
            line += ''.join(cmap.get(int(h[i:i + width], 16), '?') for i in range(0, len(h), width))
        print(line)
