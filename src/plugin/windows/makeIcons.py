"""Makes the icons of the resource file from the pictures of the dialog. Usage: makeIcons.py PICTURES FOLDER

PICTURES is pictures.h; an icon gets the number in the comment before its picture. 32 by 32 pixels, 16 colours."""
import pathlib
import re
import struct
import sys

SIZE = 32


def bits(rows, width_of_pixel):
    """Rows of numbers as the format has them: from bottom to top, each filled up to four bytes."""
    for row in reversed(rows):
        number = 0
        for pixel in row:
            number = number << width_of_pixel | pixel
        yield number.to_bytes(SIZE * width_of_pixel // 8, "big")


def icon(rows, colours):
    palette = sorted(colours.values()) + [0] * (16 - len(colours))
    pixels = [[palette.index(colours.get(sign, 0)) for sign in row] for row in rows]
    mask = [[int(sign not in colours) for sign in row] for row in rows]
    header = struct.pack("<IiiHHIIiiII", 40, SIZE, 2 * SIZE, 1, 4, 0, 0, 0, 0, 16, 0)
    image = b"".join([header, struct.pack("<16I", *palette), *bits(pixels, 4), *bits(mask, 1)])
    return struct.pack("<HHHBBBBHHII", 0, 1, 1, SIZE, SIZE, 16, 0, 1, 4, len(image), 22) + image


def main(pictures, folder):
    text = pathlib.Path(pictures).read_text(encoding="utf-8")
    colours = {sign: int(colour, 16) for sign, colour in re.findall(r"\{'(.)', 0x([0-9A-F]{6})\}", text)}
    for number, body in re.findall(r"/// Icon (\d+):[^{]*\{([^}]*)\}", text):
        rows = re.findall(r'"([^"]*)"', body)
        if [len(row) for row in rows] != [SIZE] * SIZE:
            sys.exit(f"icon {number} is not {SIZE} by {SIZE} pixels")
        (pathlib.Path(folder) / f"{number}.ico").write_bytes(icon(rows, colours))


main(*sys.argv[1:])
