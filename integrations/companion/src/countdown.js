// The countdown's rules, as the program's displays and web pages apply them: the text of a
// time, the whole second it shows, and a clock that runs down from the instant, on the
// program's clock, at which its shown second changes next.

const two = (n) => String(n).padStart(2, '0')

// "05:07" under an hour, "1:02:03" from an hour on, whole seconds rounded down in magnitude; a
// "-" in front of a negative value only with `showSign` (so -0.4 reads "-00:00").
export function formatCountdown(seconds, showSign) {
	if (!Number.isFinite(seconds)) return '--:--'
	const t = Math.min(Math.floor(Math.abs(seconds)), 9e15)
	const h = Math.floor(t / 3600)
	const m = Math.floor((t % 3600) / 60)
	const s = t % 60
	const sign = seconds < 0 && showSign ? '-' : ''
	return t < 3600 ? `${sign}${two(m)}:${two(s)}` : `${sign}${h}:${two(m)}:${two(s)}`
}

// The whole second a countdown shows, as formatCountdown rounds it: down in magnitude with the
// sign kept, so 0.4 and -0.4 are different seconds. It drops by one at each change.
export function shownSecond(value) {
	return value >= 0 ? Math.floor(value) : -1 - Math.floor(-value)
}

// The seconds the digits read, with their sign: 41 for "00:41", -41 for "-00:41", 0 for both
// "00:00" and "-00:00".
export function secondsShown(value) {
	return Math.trunc(value) || 0
}

const lastMsOfASecond = 999

// A countdown of the program: `value` seconds, running down one second per second with its
// shown second changing at `nextSecondAtMs` (the program's clock) and every 1000 ms after, or
// standing still when that instant is null.
export class Countdown {
	constructor(value, nextSecondAtMs) {
		this.value = value
		this.nextAt = nextSecondAtMs ?? null
		this.anchor = shownSecond(value) // the value at nextAt
	}

	get running() {
		return this.nextAt !== null
	}

	// Until `nextAt` the shown second is the anchor's, however early `now` is: an estimate of
	// the program's clock a little behind it, or `nextAt` rounded to the millisecond, must not
	// show the second before (which would then stand until `nextAt`, a whole second).
	valueAt(now) {
		if (!this.running) return this.value
		return this.anchor + Math.min(this.nextAt - now, lastMsOfASecond) / 1000
	}

	// The next instant at or after `now` when the shown second, or its colour for `cue` (a
	// threshold crossed), changes; null while standing.
	nextChange(now, cue = null) {
		if (!this.running) return null
		let due = this.nextAt + Math.max(0, Math.ceil((now - this.nextAt) / 1000)) * 1000
		const value = this.valueAt(now)
		for (const threshold of cue ? [cue.warningThreshold, cue.dangerThreshold, 0] : []) {
			if (value > threshold) due = Math.min(due, now + (value - threshold) * 1000)
		}
		return due
	}
}

// The earliest of the instants that are not null, or null.
export function earliest(...instants) {
	const known = instants.filter((t) => t !== null && t !== undefined)
	return known.length ? Math.min(...known) : null
}
