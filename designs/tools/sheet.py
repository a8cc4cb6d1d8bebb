"""The contact sheet: every motif at its own size on a light and on a dark ground, a row for each folder."""
import base64
from xml.sax.saxutils import escape

import drawing
from picture import write_png

CELL, CAPTION, MARGIN = 166, 26, 16
LIGHT, DARK = "#ffffff", "#141a33"


def make_sheet(folders):
  """The sheet as a PNG. folders: the name of each folder and its motifs, each its name and its indexed frames.

  A moving motif shows two of its frames, one on each ground.
  """
  columns = max(len(motifs) for _, motifs in folders)
  width = MARGIN + columns * (2 * CELL + MARGIN)
  height = MARGIN + len(folders) * (CELL + 2 * CAPTION + MARGIN)
  parts = ['<rect width="100%" height="100%" fill="#d5dbe4"/>']
  for row, (folder, motifs) in enumerate(folders):
    top = MARGIN + row * (CELL + 2 * CAPTION + MARGIN)
    parts.append(_text(MARGIN, top + 16, 19, "bold", folder))
    for column, (name, indexed) in enumerate(motifs):
      parts += _motif(MARGIN + column * (2 * CELL + MARGIN), top + CAPTION, name, indexed)
  return drawing.render_png(
    f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}">{"".join(parts)}</svg>'.encode())


def _motif(left, top, name, indexed):
  frames = len(indexed.frames)
  for place, colour, number in ((left, LIGHT, 0), (left + CELL, DARK, frames // 3)):
    yield f'<rect x="{place}" y="{top}" width="{CELL}" height="{CELL}" fill="{colour}"/>'
    yield (f'<image x="{place + (CELL - indexed.width) // 2}" y="{top + (CELL - indexed.height) // 2}" '
           f'width="{indexed.width}" height="{indexed.height}" '
           f'href="data:image/png;base64,{base64.b64encode(write_png(indexed.picture(number))).decode()}"/>')
  yield _text(left + 2, top + CELL + 17, 14, "normal", name + (" (animado)" if frames > 1 else ""))


def _text(x, y, size, weight, text):
  return (f'<text x="{x}" y="{y}" font-family="DejaVu Sans" font-size="{size}" font-weight="{weight}" fill="#22304a" '
          f'text-rendering="geometricPrecision">{escape(text)}</text>')
