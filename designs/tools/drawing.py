"""Draws a motif: samples the animation in an SVG drawing and has each frame rendered.

A drawing is an ordinary animated SVG that any browser plays. Of the animation elements it may use `animate`
and `animateTransform` with `values`, `dur`, and at will `begin` and calcMode="discrete". Its root says
how it becomes a GIF: width and height in pixels, data-frames, and data-delay in milliseconds.
"""
import copy
import re
import subprocess
import xml.etree.ElementTree as ET

from picture import read_png

SVG = "http://www.w3.org/2000/svg"
NUMBER = re.compile(r"-?(?:\d+\.?\d*|\.\d+)")
# A pixel of a GIF is opaque or transparent; a white rim of two pixels keeps the edge clean on any page.
RIM = """<filter xmlns="http://www.w3.org/2000/svg" id="motif-rim" filterUnits="userSpaceOnUse" x="{left}" y="{top}"
  width="{width}" height="{height}" color-interpolation-filters="sRGB">
  <feGaussianBlur in="SourceAlpha" stdDeviation="1.3"/>
  <feComponentTransfer result="wide"><feFuncA type="linear" slope="12" intercept="-0.22"/></feComponentTransfer>
  <feFlood flood-color="#ffffff"/><feComposite operator="in" in2="wide" result="rim"/>
  <feMerge><feMergeNode in="rim"/><feMergeNode in="SourceGraphic"/></feMerge></filter>"""

ET.register_namespace("", SVG)


def draw_motif(path):
  """The frames of a drawing and the delay between them."""
  root = ET.parse(path).getroot()
  frames, delay = int(root.get("data-frames", "1")), int(root.get("data-delay", "100"))
  pictures = []
  for frame in range(frames):
    still = copy.deepcopy(root)
    _freeze(still, frame * delay)
    _add_rim(still)
    pictures.append(render(ET.tostring(still)))
    if _is_cut(pictures[-1]):
      raise ValueError(f"frame {frame} is cut off at its edge")
  return pictures, delay


def _is_cut(picture):
  alpha, width = picture.pixels[3::4], picture.width
  return max(alpha[:width] + alpha[-width:] + alpha[::width] + alpha[width - 1::width]) >= 128


def render(svg):
  return read_png(render_png(svg))


def render_png(svg):
  done = subprocess.run(["rsvg-convert"], input=svg, capture_output=True, check=False)
  if done.returncode:
    raise ValueError(done.stderr.decode(errors="replace").strip())
  return done.stdout


def _freeze(root, time):
  for parent in list(root.iter()):
    for child in list(parent):
      kind = child.tag.removeprefix("{%s}" % SVG)
      if kind == "animate":
        parent.set(child.get("attributeName"), _sample(child, time))
      elif kind == "animateTransform":
        parent.set("transform", f"{child.get('type')}({_sample(child, time)})")
      else:
        continue
      parent.remove(child)


def _sample(animation, time):
  """The value of an animation at a time in milliseconds."""
  values = [value.strip() for value in animation.get("values").split(";")]
  length, begin = (round(float(animation.get(name, "0s")[:-1]) * 1000) for name in ("dur", "begin"))
  phase = (time - begin) % length / length
  if animation.get("calcMode") == "discrete":
    return values[int(phase * len(values) + 1e-9)]
  at = int(phase * (len(values) - 1) + 1e-9)
  return _between(values[at], values[at + 1], phase * (len(values) - 1) - at)


def _between(first, second, part):
  """The first text with its numbers moved so far towards those of the second."""
  pairs = zip(map(float, NUMBER.findall(first)), map(float, NUMBER.findall(second)), strict=True)
  moved = ["%.4f" % (a + (b - a) * part) for a, b in pairs]
  return NUMBER.sub(lambda _: moved.pop(0), first)


def _add_rim(root):
  body = ET.Element("{%s}g" % SVG, {"filter": "url(#motif-rim)"})
  for child in list(root):
    root.remove(child)
    body.append(child)
  left, top, width, height = root.get("viewBox").split()
  root.append(ET.fromstring(RIM.format(left=left, top=top, width=width, height=height)))
  root.append(body)
