// The module's variables and feedbacks against the real program while a cue runs: through its
// thresholds into overtime and stopped, counting by themselves between the program's messages
// (the remaining time within 150 ms of the program's), a wrong access code, and the program
// stopped, frozen and started again.
import assert from 'node:assert/strict'
import { after, before, test } from 'node:test'

import { formatCountdown } from '../src/countdown.js'
import { KaironModule } from '../src/module.js'
import { palette } from '../src/theme.js'
import { readView } from '../src/view.js'
import { FakeHost } from './support/fake-host.js'
import { KaironProgram, accessCode } from './support/kairon-program.js'
import { at, waitFor } from './support/wait.js'

const show = {
	name: 'Soirée',
	cues: [
		{ name: 'Ouverture', speaker: 'Ana', duration: 5, warningThreshold: 3, dangerThreshold: 1 },
		{ name: 'Débat', duration: 300, warningThreshold: 20, dangerThreshold: 10, colorHex: '#3366FF' },
		{ name: 'Clôture', duration: 120 },
	],
}

let program
let host
let kairon
let documents = 0 // state documents the module took in

before(async () => {
	program = await KaironProgram.launch(show)
	host = new FakeHost()
	kairon = new KaironModule(host)
	const takeDocument = kairon.takeDocument.bind(kairon)
	kairon.takeDocument = (doc) => {
		documents += 1
		takeDocument(doc)
	}
	kairon.init({ host: '127.0.0.1', port: program.port, code: accessCode })
	await host.until(() => host.status?.[0] === 'ok', 'the status ok')
})

after(async () => {
	kairon?.destroy()
	await program?.close()
})

// "HH:MM" of `ms` in the venue, as the program's state names it.
function venueMinutes(state, ms) {
	return new Intl.DateTimeFormat('en-GB', {
		timeZone: state.timeZone,
		hourCycle: 'h23',
		hour: '2-digit',
		minute: '2-digit',
	}).format(new Date(ms))
}

test('before the cue: the show, stopped, nothing lit', async () => {
	const state = await program.state()
	assert.equal(host.values.show_name, 'Soirée')
	assert.equal(host.values.cue_count, 3)
	assert.equal(host.values.state, 'stopped')
	assert.equal(host.values.cue_name, '')
	assert.equal(host.values.cue_number, '')
	assert.equal(host.values.remaining, '00:00')
	// The first cue selected: the day is the two cues after it.
	assert.equal(state.selectedCueIndex, 0)
	assert.equal(state.laterCuesDuration, 420)
	assert.equal(host.values.projected_end, venueMinutes(state, state.serverTimeMs + 420000))
	for (const id of ['running', 'paused', 'warning', 'danger', 'overtime']) assert.equal(host.feedback(id), false, id)
	assert.deepEqual(host.feedback('state_colour', { target: 'text' }), {
		color: palette.textMuted,
		bgcolor: palette.bgDeep,
	})
})

test('a cue that starts, crosses its thresholds, goes into overtime and stops', async () => {
	assert.equal(await program.post('play'), 200)
	await host.until(() => host.values.state === 'running', 'running')
	const started = await program.state()
	assert.deepEqual(
		[host.values.cue_name, host.values.cue_number, host.values.speaker, host.values.next_cue_name],
		['Ouverture', 1, 'Ana', 'Débat'],
	)
	// The program reads its clock an instant after the start: "00:04" (a reading of 5 s sharp
	// would show "00:05" for that instant).
	await host.until(() => host.values.remaining === '00:04', '$(kairon:remaining) = 00:04', 1500)
	assert.equal(host.values.remaining_seconds, 4)
	assert.equal(
		host.values.projected_end,
		venueMinutes(started, started.serverTimeMs + started.remaining * 1000 + 420000),
	)
	assert.equal(host.feedback('running'), true)
	assert.equal(host.feedback('warning'), false)
	assert.equal(host.feedback('state_colour', { target: 'background' }).bgcolor, palette.stateNormal)
	const documentsWhileRunning = documents

	// Each step is awaited on the module's own text, then checked against the program.
	// The thresholds (3 s, 1 s) are reached as "00:03" and "00:01" end.
	const steps = [
		['00:03', 3, { warning: false, danger: false, overtime: false }, palette.stateNormal],
		['00:02', 2, { warning: true, danger: false, overtime: false }, palette.stateWarning],
		['00:01', 1, { warning: true, danger: false, overtime: false }, palette.stateWarning],
		['00:00', 0, { warning: false, danger: true, overtime: false }, palette.stateDanger],
		['-00:00', 0, { warning: false, danger: false, overtime: true }, palette.stateOvertime],
		['-00:01', -1, { warning: false, danger: false, overtime: true }, palette.stateOvertime],
	]
	for (const [text, seconds, flags, colour] of steps) {
		await host.until(() => host.values.remaining === text, `$(kairon:remaining) = ${text}`, 3000)
		const state = await program.state()
		const counted = readView(kairon.doc, state.serverTimeMs + kairon.link.clock.offset).value
		assert.ok(
			Math.abs(counted - state.remaining) <= 0.15,
			`at ${text}: module ${counted} s, program ${state.remaining} s`,
		)
		assert.equal(host.values.remaining_seconds, seconds, text)
		for (const [id, lit] of Object.entries(flags)) assert.equal(host.feedback(id), lit, `${id} at ${text}`)
		assert.equal(host.feedback('state_colour', { target: 'text' }).color, colour, `colour at ${text}`)
		assert.equal(host.feedback('running'), true)
	}
	assert.equal(host.values.elapsed, '00:06')
	// Nothing came from the program while the cue ran: the module counted by itself.
	assert.equal(documents, documentsWhileRunning)

	assert.equal(await program.post('stop'), 200)
	await host.until(() => host.values.state === 'stopped', 'stopped')
	const stopped = await program.state()
	assert.equal(host.values.remaining, formatCountdown(stopped.remaining, true))
	assert.equal(host.feedback('running'), false)
	assert.equal(host.feedback('overtime'), true) // the stage keeps the time it stopped at
})

test("the remaining time counted by the module is within 150 ms of the program's at five instants", async (t) => {
	assert.equal(await program.post('start', { index: 1 }), 200)
	await host.until(() => host.values.remaining === '04:59', 'the second cue running')
	assert.equal(host.values.cue_name, 'Débat')
	assert.equal(host.feedback('state_colour', { target: 'text' }).color, 0x3366ff)
	assert.equal(host.feedback('active_cue', { cue: 2 }), true)
	const first = await program.state()
	const documentsBefore = documents
	const changes = host.valueLog.length

	// Five readings of the program, at instants that fall anywhere in the second.
	for (const offsetMs of [370, 1510, 2650, 3790, 4930]) {
		await at(first.receivedAt + offsetMs)
		const state = await program.state()
		// Program and module share this machine's clock: what the module counted at the very
		// instant the program read its clock, on the module's own estimate of that clock.
		const counted = readView(kairon.doc, state.serverTimeMs + kairon.link.clock.offset).value
		assert.ok(Math.abs(counted - state.remaining) <= 0.15, `module ${counted} s, program ${state.remaining} s`)
		t.diagnostic(`reading at +${offsetMs} ms: module - program = ${((counted - state.remaining) * 1000).toFixed(2)} ms`)
		// And the text it shows is the one for now, either side of a change within the 150 ms
		// the module may take on a busy machine.
		const texts = [-150, 150].map((ms) => formatCountdown(readView(kairon.doc, kairon.now() + ms).value, true))
		assert.ok(texts.includes(host.values.remaining), `${host.values.remaining} shown, ${texts} expected`)
	}

	// Each change of the text the module showed, against the program's own instant for it.
	const shown = host.valueLog.slice(changes).filter((entry) => entry.id === 'remaining')
	assert.ok(shown.length >= 4, `${shown.length} changes`)
	for (const { at: changedAt, value } of shown) {
		// The program's instant at which its digits read `value`: nextSecondAtMs + k × 1000.
		const k = Math.round((changedAt - first.nextSecondAtMs) / 1000)
		const programAt = first.nextSecondAtMs + k * 1000
		assert.equal(value, formatCountdown(first.remaining - (programAt + 1 - first.serverTimeMs) / 1000, true))
		assert.ok(Math.abs(changedAt - programAt) <= 150, `"${value}" shown ${changedAt - programAt} ms from the program`)
		t.diagnostic(`"${value}" shown ${changedAt - programAt} ms after the program`)
	}
	assert.equal(documents, documentsBefore, 'no message from the program while the cue ran')
})

test('a wrong access code: "bad access code", the variables still following', async () => {
	const wrongHost = new FakeHost()
	const wrong = new KaironModule(wrongHost)
	wrong.init({ host: '127.0.0.1', port: program.port, code: 'ZZZZZZZZ' })
	try {
		await wrongHost.until(() => wrongHost.status?.[0] === 'authentication_failure', 'bad access code')
		assert.deepEqual(wrongHost.status, ['authentication_failure', 'bad access code'])
		assert.deepEqual(wrongHost.logs.at(-1), {
			level: 'warn',
			text: "Kairon refused the access code: Code d'accès manquant ou incorrect",
		})
		await wrongHost.until(() => wrongHost.values.cue_name === 'Débat', 'the cue in the variables')
		const before = await program.state()
		assert.equal(await wrongHost.runAction('stop'), false)
		assert.equal((await program.state()).running, before.running)
		assert.deepEqual(wrongHost.logs.at(-1), {
			level: 'warn',
			text: 'Kairon refused "stop": Code d\'accès manquant ou incorrect',
		})
		for (const { text } of wrongHost.logs) assert.ok(!text.includes('ZZZZZZZZ'), text)
	} finally {
		wrong.destroy()
	}
	assert.deepEqual(host.status, ['ok', null])
})

test('the program stopped and started again: disconnected, then ok with no action', async () => {
	await program.stop()
	await host.until(() => host.status?.[0] === 'disconnected', 'disconnected', 3000)
	assert.equal(host.values.remaining, '--:--')
	assert.equal(host.values.state, 'disconnected')
	assert.equal(host.feedback('running'), false)
	await program.start()
	await host.until(() => host.status?.[0] === 'ok', 'ok again', 10000)
	await host.until(() => host.values.show_name === 'Soirée', 'the show again')
	const state = await program.state()
	assert.equal(host.values.state, state.running ? (state.paused ? 'paused' : 'running') : 'stopped')
	// The connections kept open for the commands died with the program: a key works at once.
	assert.equal(await host.runAction('blackout'), true)
	assert.equal((await program.state()).blackout, true)
	await host.until(() => host.feedback('blackout') === true, 'blackout lit')
})

test('the program frozen for three seconds (no answer): disconnected, then ok when it answers', async () => {
	process.kill(program.pid, 'SIGSTOP')
	try {
		await host.until(() => host.status?.[0] === 'disconnected', 'disconnected on silence', 4000)
	} finally {
		process.kill(program.pid, 'SIGCONT')
	}
	await host.until(() => host.status?.[0] === 'ok', 'ok again', 10000)
	await waitFor(() => host.values.show_name === 'Soirée', 'the show again')
})
