// The module's reading of the program's state, on documents made here and instants chosen
// here: the countdown's texts, the colours, the instants of change, the feed's sequence, the
// clock offset and the reconnection delays.
import assert from 'node:assert/strict'
import { test } from 'node:test'

import { nextRetryMs } from '../src/connection.js'
import { Countdown, formatCountdown, secondsShown, shownSecond } from '../src/countdown.js'
import { Feed } from '../src/feed.js'
import { ServerClock } from '../src/serverclock.js'
import { colourOfHex, palette, stateColour } from '../src/theme.js'
import { offlineView, readView } from '../src/view.js'

const t0 = Date.UTC(2026, 10, 21, 18, 20, 0) // 18:20:00 UTC

// A document of a show of two cues, the first running with 4.5 s left, its digits changing
// next at t0 + 500.
function runningDoc(overrides = {}) {
	return {
		sessionName: 'Soirée',
		cues: [
			{ name: 'Ouverture', speaker: 'Ana', duration: 5, warningThreshold: 3, dangerThreshold: 1, color: null },
			{ name: 'Débat', speaker: '', duration: 90, warningThreshold: 120, dangerThreshold: 30, color: '#FF0000' },
		],
		activeCueIndex: 0,
		selectedCueIndex: 0,
		laterCuesDuration: 90,
		running: true,
		paused: false,
		remaining: 4.5,
		liveRemaining: 4.5,
		elapsed: 0.5,
		nextSecondAtMs: t0 + 500,
		liveNextSecondAtMs: t0 + 500,
		serverTimeMs: t0,
		cueName: 'Ouverture',
		speaker: 'Ana',
		nextCueName: 'Débat',
		message: null,
		messageUrgent: false,
		blackout: false,
		freeze: false,
		clockMode: false,
		blinkActive: false,
		timeZone: 'Europe/Paris',
		utcOffsetSeconds: 3600,
		...overrides,
	}
}

test('formatCountdown writes the stage digits', () => {
	assert.equal(formatCountdown(0, true), '00:00')
	assert.equal(formatCountdown(-0.4, true), '-00:00')
	assert.equal(formatCountdown(-0.4, false), '00:00')
	assert.equal(formatCountdown(42.99, true), '00:42')
	assert.equal(formatCountdown(-42.2, true), '-00:42')
	assert.equal(formatCountdown(307, true), '05:07')
	assert.equal(formatCountdown(3723.5, true), '1:02:03')
	assert.equal(formatCountdown(-3600, true), '-1:00:00')
	assert.equal(formatCountdown(Number.NaN, true), '--:--')
})

test('the shown second and the seconds the digits read', () => {
	assert.equal(shownSecond(0.4), 0)
	assert.equal(shownSecond(-0.4), -1)
	assert.equal(shownSecond(-1), -2)
	assert.equal(secondsShown(41.7), 41)
	assert.equal(secondsShown(-41.3), -41)
	assert.ok(Object.is(secondsShown(-0.4), 0))
})

test('a countdown runs from the instant its shown second changes', () => {
	const running = new Countdown(4.5, t0 + 500)
	assert.equal(running.valueAt(t0), 4.5)
	assert.equal(running.valueAt(t0 + 500), 4)
	assert.equal(running.valueAt(t0 + 6000), -1.5)
	assert.equal(running.nextChange(t0), t0 + 500)
	assert.equal(running.nextChange(t0 + 501), t0 + 1500)
	// The thresholds of a cue (3 s and 1 s) fall on whole seconds here; 2.5 s would not.
	const cue = { warningThreshold: 2.5, dangerThreshold: 1 }
	assert.equal(running.nextChange(t0 + 1600, cue), t0 + 2000)
	assert.equal(running.nextChange(t0 + 2001, cue), t0 + 2001 + 499)
	// Read before the instant of its document (a clock estimate a little behind), or with
	// nextSecondAtMs rounded up to a whole second away, it still shows the document's second.
	const fresh = new Countdown(4.999943, t0 + 1000)
	assert.equal(formatCountdown(fresh.valueAt(t0), true), '00:04')
	assert.equal(formatCountdown(fresh.valueAt(t0 - 3), true), '00:04')
	assert.equal(fresh.valueAt(t0 - 3), 4.999)
	assert.equal(formatCountdown(new Countdown(-0.2, t0 + 1000).valueAt(t0 - 3), true), '-00:00')
	const standing = new Countdown(12.3, null)
	assert.equal(standing.valueAt(t0 + 99999), 12.3)
	assert.equal(standing.nextChange(t0), null)
})

test("the state colour is the stage display's", () => {
	const cue = { warningThreshold: 120, dangerThreshold: 30, color: null }
	assert.equal(stateColour(null, 10), palette.textMuted)
	assert.equal(stateColour(cue, 121), 0x2ecc71)
	assert.equal(stateColour({ ...cue, color: '#FF0000' }, 121), 0xff0000)
	assert.equal(stateColour(cue, 120), 0xf1c40f)
	assert.equal(stateColour(cue, 30), 0xe74c3c)
	assert.equal(stateColour(cue, 0), 0xe74c3c)
	assert.equal(stateColour(cue, -0.001), 0xff3b30)
	assert.equal(colourOfHex('#12ab9F'), 0x12ab9f)
	assert.equal(colourOfHex('red'), null)
})

test('the view of a running cue at successive instants', () => {
	const doc = runningDoc()
	const at = (ms) => readView(doc, t0 + ms)

	let view = at(0)
	assert.deepEqual(view.variables, {
		remaining: '00:04',
		remaining_seconds: 4,
		elapsed: '00:00',
		cue_name: 'Ouverture',
		cue_number: 1,
		speaker: 'Ana',
		next_cue_name: 'Débat',
		state: 'running',
		message: '',
		show_name: 'Soirée',
		// 18:20:00 UTC + 4.5 s + 90 s, in Paris
		projected_end: '19:21',
		cue_count: 2,
	})
	assert.equal(view.colour, palette.stateNormal)
	assert.equal(view.flags.running, true)
	assert.equal(view.flags.warning, false)
	assert.equal(view.nextChangeAt, t0 + 500) // the digits and the elapsed second at once

	view = at(1501)
	assert.equal(view.variables.remaining, '00:02')
	assert.equal(view.variables.elapsed, '00:02')
	assert.equal(view.flags.warning, true)
	assert.equal(view.colour, palette.stateWarning)

	view = at(3501)
	assert.equal(view.variables.remaining, '00:00')
	assert.equal(view.flags.danger, true)
	assert.equal(view.colour, palette.stateDanger)

	view = at(5501)
	assert.equal(view.variables.remaining, '-00:01')
	assert.equal(view.variables.remaining_seconds, -1)
	assert.equal(view.flags.overtime, true)
	assert.equal(view.flags.danger, false)
	assert.equal(view.colour, palette.stateOvertime)
	// In overtime the projected end moves with the clock: it changes at the next minute.
	assert.equal(view.variables.projected_end, '19:21')
	assert.equal(view.nextChangeAt, t0 + 6500)
	assert.equal(readView(doc, t0 + 30000).variables.projected_end, '19:22')
})

test('a frozen cue keeps its digits while its clock runs on', () => {
	const doc = runningDoc({ freeze: true, remaining: 4.5, nextSecondAtMs: null })
	const view = readView(doc, t0 + 2200)
	assert.equal(view.variables.remaining, '00:04')
	assert.equal(view.variables.elapsed, '00:02')
	assert.equal(view.flags.freeze, true)
})

test('the view of a paused cue, a message, the switches and no active cue', () => {
	const paused = readView(
		runningDoc({
			paused: true,
			nextSecondAtMs: null,
			liveNextSecondAtMs: null,
			message: 'Plus fort',
			messageUrgent: true,
			blackout: true,
			clockMode: true,
			blinkActive: true,
		}),
		t0 + 10000,
	)
	assert.equal(paused.variables.state, 'paused')
	assert.equal(paused.variables.remaining, '00:04')
	assert.equal(paused.variables.message, 'Plus fort')
	assert.deepEqual(paused.flags, {
		running: false,
		paused: true,
		warning: false,
		danger: false,
		overtime: false,
		blackout: true,
		blink: true,
		freeze: false,
		clockMode: true,
		message: true,
		urgentMessage: true,
		activeCueNumber: 1,
	})
	// Stopped with no active cue: "—" is the program's name for none. The day's end is now plus
	// the durations the program counts after the selected cue, standing nothing of a cue.
	const cues = [{ ...runningDoc().cues[0], duration: 600 }, runningDoc().cues[1]]
	const stopped = {
		activeCueIndex: null,
		running: false,
		cueName: '—',
		speaker: '',
		remaining: 0,
		nextSecondAtMs: null,
		liveNextSecondAtMs: null,
		cues,
	}
	const idle = readView(runningDoc({ ...stopped, selectedCueIndex: 0, laterCuesDuration: 90 }), t0)
	assert.equal(idle.variables.cue_name, '')
	assert.equal(idle.variables.cue_number, '')
	assert.equal(idle.variables.state, 'stopped')
	assert.equal(idle.variables.projected_end, '19:21') // 18:20 UTC + 90 s, in Paris
	const none = runningDoc({ ...stopped, selectedCueIndex: null, laterCuesDuration: 690 })
	assert.equal(readView(none, t0).variables.projected_end, '19:31')
	// Stopped, the end moves with the wall clock.
	assert.equal(readView(none, t0 + 60000).variables.projected_end, '19:32')
	assert.equal(idle.colour, palette.textMuted)
	assert.equal(idle.flags.activeCueNumber, null)
	assert.equal(offlineView.variables.remaining, '--:--')
	assert.equal(offlineView.variables.state, 'disconnected')
})

test('a zone unknown here is replaced by the offset from UTC', () => {
	const view = readView(runningDoc({ timeZone: 'Nowhere/Atlantis', utcOffsetSeconds: -5 * 3600 }), t0)
	assert.equal(view.variables.projected_end, '13:21')
})

test('the feed applies patches in sequence and asks again after a gap', () => {
	const feed = new Feed()
	assert.equal(Feed.isGreeting({ type: 'show', protocol: 2, seq: 1 }), true)
	assert.equal(Feed.isGreeting({ type: 'show', seq: 1 }), false)
	assert.equal(feed.apply({ type: 'show', protocol: 2, seq: 1, sessionName: 'A', cues: [] }), null)
	assert.equal(feed.apply({ type: 'state', seq: 1, running: false, message: 'x' }), 'changed')
	assert.deepEqual(feed.document(), { sessionName: 'A', cues: [], running: false, message: 'x' })
	assert.equal(feed.apply({ type: 'patch', seq: 2, running: true, message: null }), 'changed')
	assert.deepEqual(feed.document(), { sessionName: 'A', cues: [], running: true, message: null })
	assert.equal(feed.apply({ type: 'patch', seq: 4, running: false }), 'ask-whole')
	assert.equal(feed.apply({ type: 'patch', seq: 5, running: false }), null)
	assert.equal(feed.document().running, true)
	assert.equal(feed.apply({ type: 'show', protocol: 2, seq: 5, sessionName: 'B', cues: [] }), null)
	assert.equal(feed.apply({ type: 'state', seq: 5, running: false }), 'changed')
	assert.deepEqual(feed.document(), { sessionName: 'B', cues: [], running: false })
})

test('the clock offset trusts the fastest round trip', () => {
	let local = 1000
	const clock = new ServerClock(() => local)
	clock.noteArrival(5000, 1000)
	assert.equal(clock.now(), 5000)
	assert.equal(clock.noteRoundTrip(1000, 5100, 1040), true) // trip 40: offset 4080
	assert.equal(clock.offset, 4080)
	assert.equal(clock.noteRoundTrip(2000, 6000, 2010), true) // trip 10: offset 3995
	assert.equal(clock.noteRoundTrip(3000, 9000, 3100), false) // slower: ignored
	assert.equal(clock.offset, 3995)
	clock.noteArrival(99999, 0) // a document does not override a round trip
	local = 2000
	assert.equal(clock.now(), 5995)
})

test('the reconnection waits 0.5 s, then doubles up to 5 s', () => {
	const waits = [500]
	while (waits.length < 7) waits.push(nextRetryMs(waits.at(-1)))
	assert.deepEqual(waits, [500, 1000, 2000, 4000, 5000, 5000, 5000])
})
