#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the digits of a font equally wide, so that columns of numbers and running clocks stand
still: every digit's character gets the glyph that the font has for tables.

    tabular_digits.py IN.ttf OUT.ttf        needs fonttools

resources/font/font/Cantarell-Regular-5.ttf has been through it.
"""
import sys

from fontTools.ttLib import TTFont


def tabular_glyphs(font):
    """Glyph to glyph of equal width, as the feature "tnum" has it."""
    table = font["GSUB"].table
    found = {}
    for record in table.FeatureList.FeatureRecord:
        if record.FeatureTag != "tnum":
            continue
        for place in record.Feature.LookupListIndex:
            for part in table.LookupList.Lookup[place].SubTable:
                found.update(getattr(part, "ExtSubTable", part).mapping)
    return found


def main(source, target):
    font = TTFont(source)
    glyphs = tabular_glyphs(font)
    for table in font["cmap"].tables:
        for digit in map(ord, "0123456789"):
            if digit in table.cmap:
                table.cmap[digit] = glyphs.get(table.cmap[digit], table.cmap[digit])
    widths = {font["hmtx"][font.getBestCmap()[ord(digit)]][0] for digit in "0123456789"}
    if len(widths) != 1:
        sys.exit("the digits are not equally wide: %s" % sorted(widths))
    font.save(target)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
