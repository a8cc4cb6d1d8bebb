"""Writes a tune as a MIDI file of format 1: a track of tempos and texts, then a track for each voice."""
import struct
from fractions import Fraction

TICKS = 480
DRUM_CHANNEL = 9
# At the same tick, first the settings of the voice, then the ends of notes, then their starts.
ORDER = {0xF0: 0, 0xC0: 0, 0xB0: 1, 0x80: 2, 0x90: 3}
TEXT, RIGHTS, NAME, TEMPO, METER = 1, 2, 3, 0x51, 0x58


def write_midi(tune):
  above, below = (int(number) for number in tune.head["meter"].split("/"))
  events = [(0, _meta(NAME, tune.head["title"])), (0, _meta(TEXT, tune.head["origin"])), (0, _meta(RIGHTS, "CC0 1.0")),
            (0, _meta(METER, bytes([above, below.bit_length() - 1, 24, 8])))]
  events += [(_ticks(at), _meta(TEMPO, int(60_000_000 / tempo).to_bytes(3, "big"))) for at, tempo in tune.tempos]
  last = max(_finish(note, voice) for voice in tune.voices.values() for note in voice.notes)
  end = max(_ticks(tune.length), last) + TICKS // 2
  channels = iter(channel for channel in range(16) if channel != DRUM_CHANNEL)
  tracks = [_track(events, end)]
  for voice in tune.voices.values():
    tracks.append(_track(_voice(voice, DRUM_CHANNEL if voice.drums else next(channels), tune), end))
  return struct.pack(">4sIHHH", b"MThd", 6, 1, len(tracks), TICKS) + b"".join(tracks)


def _voice(voice, channel, tune):
  events = [(0, _meta(NAME, voice.name))]
  if not voice.drums:
    events.append((0, bytes([0xC0 | channel, voice.program])))
  for number, value in ((7, voice.volume), (10, voice.pan), (91, voice.reverb)):
    events.append((0, bytes([0xB0 | channel, number, value])))
  if voice.pedal:
    events += _pedal(channel, voice.pedal, tune)
  starts = {}
  for note in voice.notes:
    starts.setdefault(note.key, []).append(_ticks(note.start))
  for note in voice.notes:
    begin = _ticks(note.start)
    # A key is released before it is struck again.
    finish = min([_finish(note, voice)] + [start for start in starts[note.key] if start > begin])
    velocity = max(1, min(127, note.velocity + _unevenness(begin, note.key)))
    events.append((begin, bytes([0x90 | channel, note.key, velocity])))
    events.append((finish, bytes([0x80 | channel, note.key, 64])))
  return events


def _pedal(channel, times, tune):
  """The pedal is pressed so many times per bar and released at the end."""
  for number in range(int((tune.length - tune.start) / tune.bar) * times):
    at = max(0, _ticks(tune.start + tune.bar * Fraction(number, times)))
    yield at, bytes([0xB0 | channel, 64, 0])
    yield at + 20, bytes([0xB0 | channel, 64, 127])
  yield _ticks(tune.length) - 1, bytes([0xB0 | channel, 64, 0])


def _finish(note, voice):
  return _ticks(note.start) + max(30, _ticks(note.length) * (45 if note.short else voice.gate) // 100)


def _unevenness(at, key):
  """Small variations of velocity, as of a player, the same in every run."""
  return (at // 60 * 7 + key * 5) * 31 % 9 - 4


def _ticks(whole_notes):
  return int(whole_notes * 4 * TICKS)


def _meta(kind, data):
  data = data.encode("latin-1") if isinstance(data, str) else data
  return bytes([0xFF, kind]) + _varying(len(data)) + data


def _track(events, end):
  body, now = bytearray(), 0
  for at, data in sorted(events, key=lambda event: (event[0], ORDER[event[1][0] & 0xF0])):
    body += _varying(at - now) + data
    now = at
  body += _varying(end - now) + b"\xFF\x2F\0"
  return b"MTrk" + struct.pack(">I", len(body)) + body


def _varying(number):
  out = [number & 127]
  while number := number >> 7:
    out.append(number & 127 | 128)
  return bytes(reversed(out))
