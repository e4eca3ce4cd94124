// Where a track is between two answers of the host, and when the next answer is wanted. Pure.

const WHILE_PLAYING = 2000;
const WHILE_SILENT = 6000;
/** A track that is about to end is asked about so long after its end (ms). */
const AFTER_END = 400;

/** @typedef {Pick<import("./nowplaying.js").Track, "playing" | "position" | "canSeek" | "duration">} Course */

/**
 * The position (s) of `track` at the time `now`, when it was told `at` a time before (both in ms).
 * @param {Course} track
 * @param {number} at
 * @param {number} now
 */
export function positionAt(track, at, now) {
  const passed = track.playing ? Math.max(0, now - at) / 1000 : 0;
  const position = track.position + passed;
  return track.canSeek ? Math.min(position, track.duration) : position;
}

/**
 * How long (ms) what the host just told stays good; `track` is null when nothing is loaded.
 * @param {Course | null | undefined} track
 */
export function goodFor(track) {
  if (!track?.playing) return WHILE_SILENT;
  const left = track.canSeek ? (track.duration - track.position) * 1000 : 0;
  return left > 0 ? Math.min(WHILE_PLAYING, left + AFTER_END) : WHILE_PLAYING;
}

/** Such as "3:05" and "1:02:03". @param {number} seconds */
export function clockText(seconds) {
  const whole = Math.max(0, Math.floor(seconds));
  const [hours, minutes] = [Math.floor(whole / 3600), Math.floor(whole / 60) % 60];
  const last = String(whole % 60).padStart(2, "0");
  return hours > 0 ? `${hours}:${String(minutes).padStart(2, "0")}:${last}` : `${minutes}:${last}`;
}
