// Every action against the real program: pressed through the fake host, each changes the
// program's state as read back over GET /api/state, and the module's variables and feedbacks
// follow.
import assert from 'node:assert/strict'
import { after, before, test } from 'node:test'

import { KaironModule } from '../src/module.js'
import { FakeHost } from './support/fake-host.js'
import { KaironProgram, accessCode } from './support/kairon-program.js'
import { waitFor } from './support/wait.js'

const show = {
	name: 'Soirée',
	cues: [
		{ name: 'Ouverture', speaker: 'Ana', duration: 600 },
		{ name: 'Débat', duration: 90, colorHex: '#FF0000' },
		{ name: 'Clôture', speaker: 'Léa', duration: 300 },
	],
}

let program
let host
let kairon

before(async () => {
	program = await KaironProgram.launch(show)
	host = new FakeHost()
	kairon = new KaironModule(host)
	kairon.init({ host: '127.0.0.1', port: program.port, code: accessCode })
	await host.until(() => host.status?.[0] === 'ok', 'the status ok')
})

after(async () => {
	kairon?.destroy()
	await program?.close()
})

// Presses `id` and resolves to the program's state once `settled(state)` holds.
async function press(id, options, settled, what) {
	assert.equal(await host.runAction(id, options), true, `${id} applied`)
	return waitFor(async () => {
		const state = await program.state()
		return settled(state) && state
	}, what)
}

// Waits until the module's variable `id` reads `value`.
const variable = (id, value) =>
	host.until(() => host.values[id] === value, `$(kairon:${id}) = ${JSON.stringify(value)}`)

test('the module is connected: ok, with the show in its variables', () => {
	assert.deepEqual(host.status, ['ok', null])
	assert.equal(host.values.show_name, 'Soirée')
	assert.equal(host.values.cue_count, 3)
	assert.equal(host.values.state, 'stopped')
	// The cue after the one selected in the console (the first, on opening).
	assert.equal(host.values.next_cue_name, 'Débat')
})

test('play starts the first cue', async () => {
	const state = await press('play', {}, (s) => s.running, 'running')
	assert.equal(state.activeCueIndex, 0)
	assert.equal(state.paused, false)
	await variable('state', 'running')
	await variable('cue_name', 'Ouverture')
	assert.equal(host.values.cue_number, 1)
	assert.equal(host.values.speaker, 'Ana')
	assert.equal(host.values.next_cue_name, 'Débat')
	assert.equal(host.feedback('running'), true)
	assert.equal(host.feedback('active_cue', { cue: 1 }), true)
	assert.equal(host.feedback('active_cue', { cue: 2 }), false)
})

test('pause pauses, and resumes when paused', async () => {
	await press('pause', {}, (s) => s.paused, 'paused')
	await variable('state', 'paused')
	assert.equal(host.feedback('paused'), true)
	assert.equal(host.feedback('running'), false)
	await press('pause', {}, (s) => s.running && !s.paused, 'resumed')
	await variable('state', 'running')
})

test('adjust by N seconds, +1 min, -1 min and +30 s move the remaining time', async () => {
	for (const [id, options, seconds] of [
		['adjust', { seconds: -90 }, -90],
		['adjust_plus_1min', {}, 60],
		['adjust_minus_1min', {}, -60],
		['adjust_plus_30s', {}, 30],
	]) {
		const before = await program.state()
		assert.equal(await host.runAction(id, options), true, id)
		const after = await program.state()
		// The clock runs on between the two readings: take out the time that passed.
		const moved = after.remaining - before.remaining + (after.serverTimeMs - before.serverTimeMs) / 1000
		assert.ok(Math.abs(moved - seconds) < 0.05, `${id} moved the time by ${moved} s`)
		const expected = after.remaining - (Date.now() - after.serverTimeMs) / 1000
		await host.until(
			() => Math.abs(host.values.remaining_seconds - expected) <= 1,
			`${id} in $(kairon:remaining_seconds)`,
		)
	}
})

test('next, previous and start cue N choose the cue', async () => {
	let state = await press('next', {}, (s) => s.activeCueIndex === 1, 'the second cue')
	assert.equal(state.cueName, 'Débat')
	await variable('cue_name', 'Débat')
	assert.equal(host.values.cue_number, 2)
	state = await press('prev', {}, (s) => s.activeCueIndex === 0, 'the first cue')
	await variable('cue_name', 'Ouverture')
	state = await press('start_cue', { cue: 3 }, (s) => s.activeCueIndex === 2, 'the third cue')
	assert.equal(state.running, true)
	await variable('cue_name', 'Clôture')
	assert.equal(host.values.speaker, 'Léa')
	assert.equal(host.values.next_cue_name, '')
	assert.equal(host.feedback('active_cue', { cue: 3 }), true)
})

test('a cue number past the list is refused by the program and logged, nothing changed', async () => {
	const before = await program.state()
	assert.equal(await host.runAction('start_cue', { cue: 9 }), false)
	const after = await program.state()
	assert.equal(after.activeCueIndex, before.activeCueIndex)
	assert.deepEqual(host.logs.at(-1), {
		level: 'warn',
		text: 'Kairon refused "start": Aucun cue à l\'index 8 (de 0 à 2)',
	})
	assert.deepEqual(host.status, ['ok', null])
})

test('reset restarts the cue from its full time', async () => {
	await press('adjust', { seconds: -100 }, (s) => s.remaining < 201, 'time taken off')
	const state = await press('reset', {}, (s) => s.remaining > 299, 'the full time again')
	assert.ok(state.remaining <= 300)
	await variable('remaining', '04:59')
})

test('message on air, with a variable expanded, urgent; then off', async () => {
	let state = await press(
		'message',
		{ text: 'Fin de $(kairon:cue_name)', urgent: true },
		(s) => s.message !== undefined,
		'a message',
	)
	assert.equal(state.message, 'Fin de Clôture')
	assert.equal(state.messageUrgent, true)
	await variable('message', 'Fin de Clôture')
	assert.equal(host.feedback('message'), true)
	assert.equal(host.feedback('urgent_message'), true)
	state = await press(
		'message',
		{ text: 'Plus fort', urgent: false },
		(s) => s.message === 'Plus fort',
		'another message',
	)
	assert.equal(state.messageUrgent, false)
	await variable('message', 'Plus fort')
	assert.equal(host.feedback('urgent_message'), false)
	state = await press('message_off', {}, (s) => s.message === undefined, 'no message')
	await variable('message', '')
	assert.equal(host.feedback('message'), false)
})

test('blackout, freeze and clock mode toggle, blink blinks', async () => {
	for (const [id, field, feedback] of [
		['blackout', 'blackout', 'blackout'],
		['freeze', 'freeze', 'freeze'],
		['clockmode', 'clockMode', 'clock_mode'],
	]) {
		await press(id, {}, (s) => s[field] === true, `${field} on`)
		await host.until(() => host.feedback(feedback) === true, `${feedback} lit`)
		await press(id, {}, (s) => s[field] === false, `${field} off`)
		await host.until(() => host.feedback(feedback) === false, `${feedback} out`)
	}
	await press('blink', {}, (s) => s.blinkActive, 'blinking')
	await host.until(() => host.feedback('blink') === true, 'blink lit')
})

test('doors at HH:MM, then doors off', async () => {
	const state = await press('doors', { at: '23:59' }, (s) => s.doorsTargetMs !== null, 'the doors countdown')
	const inVenue = new Intl.DateTimeFormat('en-GB', {
		timeZone: state.timeZone,
		hourCycle: 'h23',
		hour: '2-digit',
		minute: '2-digit',
	})
	assert.equal(inVenue.format(new Date(state.doorsTargetMs)), '23:59')
	await press('doors_off', {}, (s) => s.doorsTargetMs === null, 'no doors countdown')
})

test('stop stops the clock', async () => {
	await press('stop', {}, (s) => !s.running, 'stopped')
	await variable('state', 'stopped')
	assert.equal(host.feedback('running'), false)
	assert.equal(host.feedback('paused'), false)
})

test('no log line holds the access code', () => {
	for (const { text } of host.logs) assert.ok(!text.includes(accessCode), text)
})
