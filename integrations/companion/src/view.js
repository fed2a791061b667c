// What the module shows of the program at one instant: the values of its variables, the flags
// its feedbacks read and the stage's colour, all worked out from the last state document and
// the program's clock, and the next instant at which any of them changes.
import { Countdown, earliest, formatCountdown, secondsShown } from './countdown.js'
import { countdownPhase, palette, stateColour } from './theme.js'

// The active cue of a state document, or null.
export function activeCue(doc) {
	const index = doc.activeCueIndex
	return index === null || index === undefined ? null : (doc.cues?.[index] ?? null)
}

const clocks = new Map()

// "HH:mm" of the instant `ms` in the venue's time zone as the document gives it; a zone this
// machine does not know is replaced by the document's fixed offset from UTC.
export function venueTimeOfDay(doc, ms) {
	const key = `${doc.timeZone}|${doc.utcOffsetSeconds}`
	let clock = clocks.get(key)
	if (!clock) {
		const make = (timeZone, shiftMs) => ({
			shiftMs,
			format: new Intl.DateTimeFormat('en-GB', { timeZone, hourCycle: 'h23', hour: '2-digit', minute: '2-digit' }),
		})
		try {
			if (doc.timeZone) clock = make(doc.timeZone, 0)
		} catch {
			// RangeError: a zone name unknown here
		}
		clock ??= make('UTC', (doc.utcOffsetSeconds ?? 0) * 1000)
		clocks.set(key, clock)
	}
	const parts = {}
	for (const part of clock.format.formatToParts(new Date(ms + clock.shiftMs))) parts[part.type] = part.value
	return `${String(Number(parts.hour) % 24).padStart(2, '0')}:${parts.minute}`
}

// When the day should end, as the console's "Fin journée" reckons it: now, plus what is left of
// the running cue (nothing in overtime), plus the durations of the cues after the active one,
// else after the one selected in the console (the program's `laterCuesDuration`).
// Returns the instant in ms and whether it moves with the wall clock (stopped, paused or in
// overtime) rather than standing.
function projectedEnd(doc, now, live) {
	const rest = doc.laterCuesDuration ?? 0
	const left = doc.running ? Math.max(live.valueAt(now), 0) : 0
	const moves = !(live.running && left > 0)
	return { atMs: Math.round(now + (left + rest) * 1000), moves }
}

// The variables, flags and colour while the module has no live connection to the program.
export const offlineView = Object.freeze({
	variables: Object.freeze({
		remaining: '--:--',
		remaining_seconds: '',
		elapsed: '--:--',
		cue_name: '',
		cue_number: '',
		speaker: '',
		next_cue_name: '',
		state: 'disconnected',
		message: '',
		show_name: '',
		projected_end: '--:--',
		cue_count: '',
	}),
	flags: Object.freeze({
		running: false,
		paused: false,
		warning: false,
		danger: false,
		overtime: false,
		blackout: false,
		blink: false,
		freeze: false,
		clockMode: false,
		message: false,
		urgentMessage: false,
		activeCueNumber: null,
	}),
	colour: palette.textMuted,
	nextChangeAt: null,
})

// The view of the state document `doc` at the instant `now` on the program's clock.
export function readView(doc, now) {
	const cue = activeCue(doc)
	const shown = new Countdown(doc.remaining, doc.nextSecondAtMs)
	const value = shown.valueAt(now)
	const live = new Countdown(doc.liveRemaining, doc.liveNextSecondAtMs)
	const elapsedRuns = live.running
	const elapsed = doc.elapsed + (elapsedRuns ? (now - doc.serverTimeMs) / 1000 : 0)
	const end = projectedEnd(doc, now, live)
	const phase = countdownPhase(cue, value)
	const onAir = typeof doc.message === 'string'
	const state = !doc.running ? 'stopped' : doc.paused ? 'paused' : 'running'

	const variables = {
		remaining: formatCountdown(value, true),
		remaining_seconds: secondsShown(value),
		elapsed: formatCountdown(elapsed, false),
		cue_name: cue ? (doc.cueName ?? cue.name) : '',
		cue_number: cue ? doc.activeCueIndex + 1 : '',
		speaker: doc.speaker ?? '',
		next_cue_name: doc.nextCueName ?? '',
		state,
		message: onAir ? doc.message : '',
		show_name: doc.sessionName ?? '',
		projected_end: venueTimeOfDay(doc, end.atMs),
		cue_count: doc.cues?.length ?? 0,
	}
	const flags = {
		running: state === 'running',
		paused: state === 'paused',
		warning: phase === 'warning',
		danger: phase === 'danger',
		overtime: phase === 'overtime',
		blackout: doc.blackout === true,
		blink: doc.blinkActive === true,
		freeze: doc.freeze === true,
		clockMode: doc.clockMode === true,
		message: onAir,
		urgentMessage: onAir && doc.messageUrgent === true,
		activeCueNumber: cue ? doc.activeCueIndex + 1 : null,
	}

	const elapsedDue = elapsedRuns ? now + (Math.floor(elapsed) + 1 - elapsed) * 1000 : null
	const liveValue = live.valueAt(now)
	const overtimeDue = live.running && liveValue > 0 ? now + liveValue * 1000 : null
	const minuteDue = end.moves ? now + (60000 - (((end.atMs % 60000) + 60000) % 60000)) : null
	return {
		variables,
		flags,
		colour: stateColour(cue, value),
		value,
		nextChangeAt: earliest(shown.nextChange(now, cue), elapsedDue, overtimeDue, minuteDue),
	}
}
