"""Reads a tune from its text. The notation is documented in designs/sources/README.md."""
import re
from dataclasses import dataclass, field
from fractions import Fraction

STEPS = {"c": 0, "d": 2, "e": 4, "f": 5, "g": 7, "a": 9, "b": 11}
CHORDS = {"": (0, 4, 7), "m": (0, 3, 7), "7": (0, 4, 7, 10), "m7": (0, 3, 7, 10), "maj7": (0, 4, 7, 11), "6": (0, 4, 7, 9),
          "add9": (0, 4, 7, 2)}
DRUMS = {"kick": 36, "stick": 37, "snare": 38, "hat": 42, "pedal": 44, "crash": 49, "ride": 51, "tambourine": 54,
         "maracas": 70, "claves": 75, "block": 76, "lowblock": 77, "triangle": 81}
STROKES = {"x": 0, "X": 16, "o": -26}
LOUDNESS = {"p": 54, "mp": 68, "mf": 82, "f": 98, "ff": 114}
TONE, NOTE = r"[RTF1-5][',]*", r"[a-g](?:#|b)?[',]*"
EVENT = re.compile(rf"(?P<what>r|\*[\w-]+|\[[^\]]+\]|{NOTE}|{TONE})(?P<length>\d+\.*|)(?P<marks>[~^>]*)$")


class TuneError(ValueError):
  """What is wrong in a tune, and where."""


@dataclass
class Note:
  """Start and length in whole notes; short if it is to sound for half its length; tied to the next one of its key."""
  start: Fraction
  length: Fraction
  key: int
  velocity: int
  short: bool = False
  tied: bool = False


@dataclass
class Voice:
  """A voice as its line in the tune sets it up; octave is that of an unmarked c, low the lowest key for tones of a chord."""
  name: str
  program: int = 0
  volume: int = 96
  pan: int = 64
  octave: int = 5
  velocity: int = 84
  gate: int = 92
  low: int = 55
  reverb: int = 48
  pedal: int = 0
  drums: int = 0
  notes: list = field(default_factory=list)


@dataclass
class Place:
  """The position of a bar, and what carries over from one bar of a voice to the next."""
  name: str
  start: Fraction
  harmony: list
  louder: int
  velocity: int
  length: Fraction = Fraction(1, 4)


class Tune:
  """head holds the lines such as title and tempo; start is negative if the tune begins with an upbeat."""

  def __init__(self, text):
    self.head, self.voices, self.patterns, self.beats, self.sections = {}, {}, {}, {}, {}
    self._read(text)
    self.bar = Fraction(self.head["meter"])
    self.beat = Fraction(1, int(self.head["meter"].partition("/")[2]))
    self.start = self.length = Fraction(self.head["upbeat"]) - self.bar if "upbeat" in self.head else Fraction(0)
    self.tempos = [(Fraction(0), Fraction(self.head["tempo"]))]
    for word in self.head["form"].split():
      name, _, loudness = word.partition("@")
      if name not in self.sections:
        raise TuneError(f"no section [{name}]")
      self._play(name, self.sections[name], LOUDNESS[loudness] - LOUDNESS["mf"] if loudness else 0)
    for voice in self.voices.values():
      voice.notes = _join_ties(voice.notes)

  def _read(self, text):
    section = beat = None
    for number, line in enumerate(text.splitlines(), 1):
      try:
        words = line.split()
        if not words:
          continue
        if line.startswith("["):
          section = self.sections.setdefault(line.strip("[] "), {})
        elif section is not None:
          name, _, rest = line.partition(":")
          if name not in self.voices and name not in ("chords", "tempo"):
            raise TuneError(f"no voice {name}")
          section[name] = rest.strip()
        elif line.startswith(" "):
          beat.append((DRUMS[words[0]], words[1]))
        elif words[0] == "voice":
          options = (word.split("=") for word in words[2:])
          self.voices[words[1]] = Voice(words[1], **{option: int(value) for option, value in options})
        elif words[0] in ("pattern", "beat"):
          if words[1] in self.patterns or words[1] in self.beats:
            raise TuneError(f"{words[1]} is there already")
          if words[0] == "pattern":
            self.patterns[words[1]] = words[2:]
          else:
            beat = self.beats[words[1]] = []
        else:
          self.head[words[0]] = line.partition(" ")[2].strip()
      except (TuneError, KeyError, TypeError, ValueError, AttributeError) as error:
        raise TuneError(f"line {number}: {error}") from error

  def _play(self, name, lines, louder):
    chords = [[_chord(word) for word in bar] for bar in _bars(lines["chords"])]
    for number, bar in enumerate(_bars(lines.get("tempo", ""))):
      for i, word in enumerate(bar):
        self.tempos.append((self.length + self.bar * (number + Fraction(i, len(bar))), Fraction(word)))
    for voice in self.voices.values():
      line = lines.get(voice.name, "")
      bars = _bars(lines[line[1:]] if line.startswith("=") else line)
      if len(bars) == 1 and all(word.startswith("*") for word in bars[0]):
        bars = [[bars[0][i % len(bars[0])]] for i in range(len(chords))]
      if bars and len(bars) != len(chords):
        raise TuneError(f"[{name}] {voice.name}: {len(bars)} bars, but {len(chords)} of chords")
      place = Place("", self.length, [], louder, voice.velocity + louder)
      for number, (bar, place.harmony) in enumerate(zip(bars, chords)):
        place.name = f"[{name}] {voice.name}, bar {number + 1}"
        place.start = self.length + self.bar * number
        self._play_bar(voice, bar, place)
    self.length += self.bar * len(chords)

  def _play_bar(self, voice, words, place):
    at, third = place.start, False
    for word in words:
      if word.startswith("!"):
        place.velocity = LOUDNESS[word[1:]] + place.louder
        continue
      third = third or word.startswith("(")
      found = EVENT.match(word.strip("()"))
      if not found:
        raise TuneError(f"{place.name}: what is {word}?")
      if found["what"].startswith("*"):
        self._play_named(voice, found["what"][1:], place)
        at += self.bar
        continue
      if found["length"]:
        place.length = _length(found["length"])
      length = place.length * (Fraction(2, 3) if third else 1)
      third = third and not word.endswith(")")
      if found["what"] != "r":
        chord = place.harmony[int((at - place.start) / self.bar * len(place.harmony))]
        velocity = self._lean(place.velocity, at - place.start) + (14 if ">" in found["marks"] else 0)
        voice.notes += [Note(at, length, key, velocity, "^" in found["marks"], "~" in found["marks"])
                        for key in _keys(found["what"], voice, chord)]
      at += length
    if at != place.start + self.bar:
      raise TuneError(f"{place.name}: {at - place.start} instead of {self.bar}")

  def _play_named(self, voice, name, place):
    """A bar of a pattern, or of strokes on the drums."""
    if name in self.patterns:
      self._play_bar(voice, self.patterns[name], Place(place.name, place.start, place.harmony, place.louder, place.velocity))
    elif name in self.beats:
      for key, steps in self.beats[name]:
        step = self.bar / len(steps)
        voice.notes += [Note(place.start + i * step, step, key, place.velocity + STROKES[stroke])
                        for i, stroke in enumerate(steps) if stroke != "."]
    else:
      raise TuneError(f"{place.name}: no pattern {name}")

  def _lean(self, velocity, at):
    """Players stress the first beat, and play softer between the beats."""
    if at == 0:
      return velocity + 7
    return velocity if (at / self.beat).denominator == 1 else velocity - 7


def _bars(text):
  bars = [bar.split() for bar in text.split("|")]
  return bars if any(bars) else []


def _length(text):
  value = part = Fraction(1, int(text.rstrip(".")))
  for _ in range(text.count(".")):
    part /= 2
    value += part
  return value


def _step(name):
  """The place of a note name in the octave."""
  return STEPS[name[0].lower()] + name.count("#") - name[1:].count("b")


def _chord(word):
  """The bass of a chord and its tones, as places in the octave."""
  body, _, bass = word.partition("/")
  found = re.match(r"([A-G](?:#|b)?)(.*)", body)
  if not found or found[2] not in CHORDS:
    raise TuneError(f"what is the chord {word}?")
  root = _step(found[1])
  return _step(bass or found[1]) % 12, [(root + step) % 12 for step in CHORDS[found[2]]]


def _keys(what, voice, chord):
  """The keys of a word: notes, tones of the chord (1-5), or its bass, third and fifth below (R, T, F)."""
  if what.startswith("["):
    words = re.findall(NOTE, what) if what[1] in STEPS else re.findall(TONE, what)
    return [key for word in words for key in _keys(word, voice, chord)]
  name, octave = what.rstrip("',"), 12 * (voice.octave + 1)
  shift = 12 * (what.count("'") - what.count(","))
  bass, tones = chord
  if name in "RTF":
    return [octave + shift + {"R": bass, "T": tones[1], "F": tones[2]}[name]]
  if name.isdigit():
    ladder = sorted(voice.low + (tone - voice.low) % 12 for tone in tones)
    turns, step = divmod(int(name) - 1, len(ladder))
    return [ladder[step] + 12 * turns + shift]
  return [octave + shift + _step(name)]


def _join_ties(notes):
  joined, open_ties = [], {}
  for note in notes:
    before = open_ties.pop((note.key, note.start), None)
    if before:
      before.length += note.length
      before.tied = note.tied
    else:
      joined.append(note)
    last = before or note
    if last.tied:
      open_ties[last.key, last.start + last.length] = last
  return joined
