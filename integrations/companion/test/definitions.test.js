// What the module declares to Companion, recorded by the fake host: every action, feedback,
// variable, preset and setting by name and shape, and the command each action sends.
import assert from 'node:assert/strict'
import { after, before, test } from 'node:test'

import { InstanceBase } from '@companion-module/base'

import { actionDefinitions } from '../src/actions.js'
import { configFields, normaliseConfig } from '../src/config.js'
import { KaironInstance } from '../src/instance.js'
import { KaironModule } from '../src/module.js'
import { palette } from '../src/theme.js'
import { FakeHost } from './support/fake-host.js'
import { freePort } from './support/kairon-program.js'

let host
let kairon

before(async () => {
	host = new FakeHost()
	kairon = new KaironModule(host)
	// Nothing listens on that port: the module declares all the same.
	kairon.init({ host: '127.0.0.1', port: await freePort(), code: 'K7M2P9QX' })
})

after(() => kairon.destroy())

const optionShapes = (definition) =>
	definition.options.map(({ type, id, default: value, min, max }) => ({ type, id, default: value, min, max }))

test('every action, with its name and options', () => {
	const names = Object.fromEntries(Object.entries(host.actions).map(([id, a]) => [id, a.name]))
	assert.deepEqual(names, {
		play: 'Play',
		pause: 'Pause / resume',
		stop: 'Stop',
		next: 'Next cue',
		prev: 'Previous cue',
		reset: 'Reset',
		start_cue: 'Start cue N',
		adjust: 'Adjust by N seconds',
		adjust_plus_1min: 'Add one minute',
		adjust_minus_1min: 'Remove one minute',
		adjust_plus_30s: 'Add 30 seconds',
		message: 'Message on air',
		message_off: 'Message off',
		blackout: 'Blackout on/off',
		blink: 'Blink',
		freeze: 'Freeze on/off',
		clockmode: 'Clock mode on/off',
		doors: 'Doors at HH:MM',
		doors_off: 'Doors off',
	})
	for (const [id, action] of Object.entries(host.actions)) {
		assert.equal(typeof action.callback, 'function', id)
		assert.equal(typeof action.description, 'string', id)
		assert.ok(Array.isArray(action.options), id)
	}
	assert.deepEqual(optionShapes(host.actions.start_cue), [
		{ type: 'number', id: 'cue', default: 1, min: 1, max: 1000000 },
	])
	assert.deepEqual(optionShapes(host.actions.adjust), [
		{ type: 'number', id: 'seconds', default: 60, min: -86400, max: 86400 },
	])
	assert.deepEqual(optionShapes(host.actions.message), [
		{ type: 'textinput', id: 'text', default: '', min: undefined, max: undefined },
		{ type: 'checkbox', id: 'urgent', default: false, min: undefined, max: undefined },
	])
	assert.equal(host.actions.message.options[0].useVariables, true)
	assert.deepEqual(optionShapes(host.actions.doors), [
		{ type: 'textinput', id: 'at', default: '20:00', min: undefined, max: undefined },
	])
	assert.equal(host.actions.doors.options[0].regex, '/^([01][0-9]|2[0-3]):[0-5][0-9]$/')
})

test('each action sends one command of the API, with its body', async () => {
	const sent = []
	const actions = actionDefinitions((name, body) => {
		sent.push(body === undefined ? [name] : [name, body])
		return Promise.resolve(true)
	})
	const context = { parseVariablesInString: async (text) => text.replace('$(kairon:cue_name)', 'Débat') }
	const run = (id, options = {}) => actions[id].callback({ id: 'x', controlId: 'c', actionId: id, options }, context)
	for (const id of ['play', 'pause', 'stop', 'next', 'prev', 'reset', 'blackout', 'blink', 'freeze', 'clockmode'])
		await run(id)
	await run('start_cue', { cue: 3 })
	await run('adjust', { seconds: -90 })
	await run('adjust_plus_1min')
	await run('adjust_minus_1min')
	await run('adjust_plus_30s')
	await run('message', { text: 'Fin de $(kairon:cue_name)', urgent: true })
	await run('message', { text: 'Calme' })
	await run('message_off')
	await run('doors', { at: ' 19:45 ' })
	await run('doors_off')
	assert.deepEqual(sent, [
		['play'],
		['pause'],
		['stop'],
		['next'],
		['prev'],
		['reset'],
		['blackout'],
		['blink'],
		['freeze'],
		['clockmode'],
		['start', { index: 2 }],
		['adjust', { seconds: -90 }],
		['adjust', { seconds: 60 }],
		['adjust', { seconds: -60 }],
		['adjust', { seconds: 30 }],
		['message', { text: 'Fin de Débat', urgent: true }],
		['message', { text: 'Calme', urgent: false }],
		['message', { text: null }],
		['doors', { at: '19:45' }],
		['doors', { at: null }],
	])
})

test("every feedback, with its type, name and default style in the display's colours", () => {
	const shapes = Object.fromEntries(
		Object.entries(host.feedbacks).map(([id, f]) => [id, [f.type, f.name, f.defaultStyle ?? null]]),
	)
	const lit = (bgcolor, color) => ({ bgcolor, color })
	assert.deepEqual(shapes, {
		running: ['boolean', 'Running', lit(0x2ecc71, 0x0a0a0c)],
		paused: ['boolean', 'Paused', lit(0xf1c40f, 0x0a0a0c)],
		warning: ['boolean', 'In warning', lit(0xf1c40f, 0x0a0a0c)],
		danger: ['boolean', 'In danger', lit(0xe74c3c, 0xffffff)],
		overtime: ['boolean', 'In overtime', lit(0xff3b30, 0xffffff)],
		blackout: ['boolean', 'Blackout on', lit(0xff6b00, 0xffffff)],
		blink: ['boolean', 'Blinking', lit(0xff6b00, 0xffffff)],
		freeze: ['boolean', 'Freeze on', lit(0xff6b00, 0xffffff)],
		clock_mode: ['boolean', 'Clock mode on', lit(0xff6b00, 0xffffff)],
		message: ['boolean', 'Message on air', lit(0xff6b00, 0xffffff)],
		urgent_message: ['boolean', 'Urgent message on air', lit(0xff3b30, 0xffffff)],
		active_cue: ['boolean', 'This cue is active', lit(0xff6b00, 0xffffff)],
		state_colour: ['advanced', 'State colour', null],
	})
	assert.deepEqual(optionShapes(host.feedbacks.active_cue), [
		{ type: 'number', id: 'cue', default: 1, min: 1, max: 1000000 },
	])
	assert.deepEqual(
		host.feedbacks.state_colour.options[0].choices.map((c) => c.id),
		['text', 'background'],
	)
})

test('offline, every boolean feedback is off and the state colour is the muted grey', () => {
	for (const [id, definition] of Object.entries(host.feedbacks)) {
		if (definition.type === 'boolean') assert.equal(host.feedback(id, { cue: 1 }), false, id)
	}
	assert.deepEqual(host.feedback('state_colour', { target: 'text' }), {
		color: palette.textMuted,
		bgcolor: palette.bgDeep,
	})
	assert.deepEqual(host.feedback('state_colour', { target: 'background' }), {
		bgcolor: palette.textMuted,
		color: palette.bgDeep,
	})
})

test('every variable, with its name, set at once to its offline value', () => {
	assert.deepEqual(
		host.variableDefinitions.map((v) => v.variableId),
		[
			'remaining',
			'remaining_seconds',
			'elapsed',
			'cue_name',
			'cue_number',
			'speaker',
			'next_cue_name',
			'state',
			'message',
			'show_name',
			'projected_end',
			'cue_count',
		],
	)
	for (const v of host.variableDefinitions) assert.ok(v.name.length > 5, v.variableId)
	assert.equal(
		host.variableDefinitions.find((v) => v.variableId === 'projected_end').name,
		'Projected end of the day, HH:MM ("Fin journée")',
	)
	assert.deepEqual(host.values, {
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
	})
})

test('every preset, with what it shows and what it runs', () => {
	const summary = Object.fromEntries(
		Object.entries(host.presets).map(([id, p]) => [
			id,
			[
				p.category,
				p.style.text,
				p.steps.flatMap((s) => s.down.map((a) => a.actionId)).join(','),
				p.feedbacks.map((f) => f.feedbackId).join(','),
			],
		]),
	)
	assert.deepEqual(summary, {
		play: ['Transport', 'PLAY', 'play', 'running'],
		pause: ['Transport', 'PAUSE', 'pause', 'paused'],
		stop: ['Transport', 'STOP', 'stop', ''],
		reset: ['Transport', 'RESET', 'reset', ''],
		prev: ['Transport', 'PRÉCÉDENT', 'prev', ''],
		next: ['Transport', 'SUIVANT', 'next', ''],
		next_named: ['Transport', 'Suivant :\\n$(kairon:next_cue_name)', 'next', ''],
		remaining: ['Time', '$(kairon:remaining)', 'pause', 'state_colour'],
		cue_name: ['Time', '$(kairon:cue_name)', '', ''],
		plus_1min: ['Adjust', '+1m', 'adjust_plus_1min', ''],
		minus_1min: ['Adjust', '-1m', 'adjust_minus_1min', ''],
		plus_30s: ['Adjust', '+30s', 'adjust_plus_30s', ''],
		blackout: ['Stage', 'BLACKOUT', 'blackout', 'blackout'],
		blink: ['Stage', 'BLINK', 'blink', 'blink'],
		freeze: ['Stage', 'FREEZE', 'freeze', 'freeze'],
		clock_mode: ['Stage', 'HORLOGE', 'clockmode', 'clock_mode'],
		message_off: ['Stage', 'MESSAGE\\nOFF', 'message_off', 'message'],
	})
	const variableIds = new Set(host.variableDefinitions.map((v) => v.variableId))
	for (const [id, preset] of Object.entries(host.presets)) {
		assert.equal(preset.type, 'button', id)
		assert.equal(typeof preset.name, 'string', id)
		for (const key of ['text', 'size', 'color', 'bgcolor']) assert.ok(key in preset.style, `${id} ${key}`)
		for (const step of preset.steps)
			for (const a of step.down) assert.ok(host.actions[a.actionId], `${id} runs ${a.actionId}`)
		for (const f of preset.feedbacks) assert.ok(host.feedbacks[f.feedbackId], `${id} shows ${f.feedbackId}`)
		for (const [, variable] of preset.style.text.matchAll(/\$\(kairon:([a-z_]+)\)/g))
			assert.ok(variableIds.has(variable), `${id} shows ${variable}`)
	}
	assert.deepEqual(host.presets.remaining.feedbacks[0].options, { target: 'text' })
})

test('the settings: host, port and access code, with their defaults', () => {
	assert.deepEqual(
		configFields.map(({ type, id, default: value }) => [type, id, value]),
		[
			['static-text', 'info', undefined],
			['textinput', 'host', '127.0.0.1'],
			['number', 'port', 8080],
			['textinput', 'code', ''],
		],
	)
	assert.deepEqual(normaliseConfig({}), { host: '127.0.0.1', port: 8080, code: '' })
	assert.deepEqual(normaliseConfig({ host: ' régie.local ', port: '9090', code: ' k7m2p9qx ' }), {
		host: 'régie.local',
		port: 9090,
		code: 'K7M2P9QX',
	})
	assert.deepEqual(normaliseConfig({ port: 70000 }).port, 8080)
})

test('the glue to Companion is an InstanceBase that hands its calls to the module', () => {
	assert.ok(KaironInstance.prototype instanceof InstanceBase)
	for (const method of ['init', 'configUpdated', 'destroy', 'getConfigFields']) {
		assert.ok(Object.hasOwn(KaironInstance.prototype, method), method)
	}
	assert.equal(KaironInstance.prototype.getConfigFields.call({}), configFields)
})
