"""Pictures as plain pixels: reads and writes PNG, writes GIF and BMP, reduces colours.

A picture is a width, a height and bytes of red, green, blue and alpha per pixel. Everything here is integer
arithmetic on its input alone, so that the same drawing gives the same bytes on every machine.
"""
import math
import struct
import zlib
from collections import Counter
from dataclasses import dataclass

# Six bits per channel are enough for a palette, and make choosing it fast. White stays white and black black.
COARSE = bytes(c & 0xFC | c >> 6 for c in range(256))


@dataclass
class Picture:
  width: int
  height: int
  pixels: bytes


def read_png(data):
  """The picture in a PNG as the renderer writes it: 8 bits per channel, not interlaced, without alpha if it is opaque."""
  width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", data[16:29])
  if depth != 8 or colour not in (2, 6) or interlace:
    raise ValueError("unexpected kind of PNG")
  packed, at = b"", 8
  while at < len(data):
    size, kind = struct.unpack(">I4s", data[at:at + 8])
    if kind == b"IDAT":
      packed += data[at + 8:at + 8 + size]
    at += size + 12
  raw, channels = zlib.decompress(packed), 4 if colour == 6 else 3
  stride = width * channels
  samples, above = bytearray(), bytearray(stride)
  for start in range(0, height * (stride + 1), stride + 1):
    above = _unfilter(raw[start], bytearray(raw[start + 1:start + 1 + stride]), above, channels)
    samples += above
  if channels == 4:
    return Picture(width, height, bytes(samples))
  pixels = bytearray(b"\xFF" * (width * height * 4))
  for channel in range(3):
    pixels[channel::4] = samples[channel::3]
  return Picture(width, height, bytes(pixels))


def _unfilter(kind, row, above, channels):
  for i in range(len(row) if kind else 0):
    left, corner = (row[i - channels], above[i - channels]) if i >= channels else (0, 0)
    if kind == 1:
      guess = left
    elif kind == 2:
      guess = above[i]
    elif kind == 3:
      guess = (left + above[i]) // 2
    else:
      far = (abs(above[i] - corner), abs(left - corner), abs(left + above[i] - 2 * corner))
      guess = (left, above[i], corner)[far.index(min(far))]
    row[i] = (row[i] + guess) & 255
  return row


def write_bmp(picture):
  """A 24-bit bitmap; what is transparent becomes white."""
  rows, stride = bytearray(), picture.width * 4
  for y in reversed(range(picture.height)):
    row = picture.pixels[y * stride:(y + 1) * stride]
    for x in range(0, stride, 4):
      red, green, blue, alpha = row[x:x + 4]
      rows += bytes(255 + ((c - 255) * alpha + 127) // 255 for c in (blue, green, red))
    rows += bytes(-picture.width * 3 % 4)
  head = struct.pack("<2sIHHI", b"BM", 54 + len(rows), 0, 0, 54)
  return head + struct.pack("<IiiHHIIiiII", 40, picture.width, picture.height, 1, 24, 0, len(rows), 2835, 2835, 0, 0) + rows


def write_png(picture):
  """A PNG of 8 bits per channel with alpha."""
  stride = picture.width * 4
  rows = b"".join(b"\0" + picture.pixels[y * stride:(y + 1) * stride] for y in range(picture.height))
  head = struct.pack(">IIBBBBB", picture.width, picture.height, 8, 6, 0, 0, 0)
  chunks = (b"IHDR", head), (b"IDAT", zlib.compress(rows, 9)), (b"IEND", b"")
  return b"\x89PNG\r\n\x1a\n" + b"".join(
    struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)) for kind, data in chunks)


@dataclass
class Indexed:
  """Frames of one size that share a palette; the entry after its last one is transparent."""
  width: int
  height: int
  palette: list
  frames: list

  def picture(self, number):
    table = [bytes(colour) + b"\xFF" for colour in self.palette] + [bytes(4)]
    return Picture(self.width, self.height, b"".join(table[cell] for cell in self.frames[number]))


def index(frames, colours):
  """The frames reduced to so many colours; a pixel that is less than half opaque becomes transparent."""
  frames = [Picture(frame.width, frame.height, frame.pixels.translate(COARSE)) for frame in frames]
  palette, entry = choose_palette(frames, colours)
  clear = len(palette)
  cells = [[entry[pixels[i:i + 3]] if pixels[i + 3] >= 128 else clear for i in range(0, len(pixels), 4)]
           for pixels in (frame.pixels for frame in frames)]
  return Indexed(frames[0].width, frames[0].height, palette, cells)


def write_gif(indexed, delay):
  """A GIF, endless if there are several frames.

  Each frame is cropped to what it shows and cleared again before the next one; delay is in milliseconds.
  """
  clear, moving = len(indexed.palette), len(indexed.frames) > 1
  bits = max(2, clear.bit_length())
  table = b"".join(bytes(c) for c in indexed.palette).ljust(3 << bits, b"\0")
  out = bytearray(b"GIF89a" + struct.pack("<HHBBB", indexed.width, indexed.height, 0xF0 | (bits - 1), clear, 0) + table)
  if moving:
    out += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0"
  clear_after, seen_through = 2 << 2, 1
  for number, cells in enumerate(indexed.frames):
    left, top, right, bottom = _shown(cells, indexed.width, clear) if number else (0, 0, indexed.width, indexed.height)
    cells = [c for y in range(top, bottom) for c in cells[y * indexed.width + left:y * indexed.width + right]]
    out += struct.pack("<BBBBHBB", 0x21, 0xF9, 4, (clear_after if moving else 0) | seen_through, delay // 10 if moving else 0, clear, 0)
    out += struct.pack("<BHHHHB", 0x2C, left, top, right - left, bottom - top, 0)
    out += bytes([bits]) + _blocks(_lzw(cells, bits)) + b"\0"
  return bytes(out + b";")


def _shown(cells, width, clear):
  rows = [y for y in range(len(cells) // width) if any(c != clear for c in cells[y * width:(y + 1) * width])]
  columns = [x for x in range(width) if any(c != clear for c in cells[x::width])]
  return (columns[0], rows[0], columns[-1] + 1, rows[-1] + 1) if rows else (0, 0, 1, 1)


def _lzw(cells, bits):
  reset, end = 1 << bits, (1 << bits) + 1
  out, room, held = bytearray(), 0, 0

  def put(code):
    nonlocal room, held
    held |= code << room
    room += size
    while room >= 8:
      out.append(held & 255)
      held >>= 8
      room -= 8

  size, table = bits + 1, {}
  put(reset)
  prefix = cells[0]
  for cell in cells[1:]:
    code = table.get((prefix, cell))
    if code is not None:
      prefix = code
      continue
    put(prefix)
    table[prefix, cell] = end + 1 + len(table)
    if end + 1 + len(table) > 4095:
      put(reset)
      size, table = bits + 1, {}
    elif end + 1 + len(table) > 1 << size:
      size += 1
    prefix = cell
  put(prefix)
  put(end)
  if room:
    out.append(held & 255)
  return bytes(out)


def _blocks(data):
  return b"".join(bytes([len(part)]) + part for part in (data[i:i + 255] for i in range(0, len(data), 255)))


def choose_palette(frames, colours):
  """The palette, and the entry for each opaque colour of the frames.

  Boxes of colours are cut where they vary most, then the entries are moved to the middle of what they stand
  for. A colour counts by the root of its pixels, so that an eye is not lost beside a large body.
  """
  counts = Counter()
  for frame in frames:
    pixels = frame.pixels
    counts.update(pixels[i:i + 3] for i in range(0, len(pixels), 4) if pixels[i + 3] >= 128)
  points = [(tuple(colour), math.isqrt(count * 16)) for colour, count in sorted(counts.items())]
  boxes = [(*_spread(points), points)]
  while len(boxes) < colours:
    at = max(range(len(boxes)), key=lambda i: (boxes[i][0], -i))
    spread, axis, box = boxes[at]
    if spread == 0:
      break
    middle = _mean(box)[axis]
    halves = [p for p in box if p[0][axis] <= middle], [p for p in box if p[0][axis] > middle]
    boxes[at:at + 1] = [(*_spread(half), half) for half in halves]
  palette = [_mean(box) for _, _, box in boxes]
  for _ in range(2):
    groups = [[] for _ in palette]
    for point in points:
      groups[_nearest(palette, point[0])].append(point)
    palette = [_mean(group) if group else entry for entry, group in zip(palette, groups)]
  return palette, {bytes(colour): _nearest(palette, colour) for colour, _ in points}


def _mean(box):
  total = sum(weight for _, weight in box)
  return tuple(sum(colour[i] * weight for colour, weight in box) // total for i in range(3))


def _spread(box):
  if len(box) < 2:
    return 0, 0
  middle = _mean(box)
  sums = [sum((colour[i] - middle[i]) ** 2 * weight for colour, weight in box) for i in range(3)]
  axis = max(range(3), key=lambda i: (sums[i], -i))
  wide = min(c[axis] for c, _ in box) != max(c[axis] for c, _ in box)
  return (sums[axis], axis) if wide else (0, 0)


def _nearest(palette, colour):
  red, green, blue = colour
  far = [3 * (red - r) ** 2 + 4 * (green - g) ** 2 + 2 * (blue - b) ** 2 for r, g, b in palette]
  return far.index(min(far))
