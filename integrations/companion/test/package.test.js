// The module as Companion runs it, through @companion-module/base and its IPC channel, against
// the real program: the packaged bundle when $KAIRON_COMPANION_PACKAGE names the unpacked
// package (as run-tests.sh does), else the sources. It registers, declares its definitions,
// reaches "ok", shows the show in its variables, runs an action and answers a feedback.
import assert from 'node:assert/strict'
import path from 'node:path'
import { fileURLToPath } from 'node:url'
import { after, before, test } from 'node:test'

import { CompanionChannel } from './support/companion-ipc.js'
import { KaironProgram, accessCode } from './support/kairon-program.js'
import { waitFor } from './support/wait.js'

const moduleDir =
	process.env.KAIRON_COMPANION_PACKAGE ?? path.resolve(path.dirname(fileURLToPath(import.meta.url)), '..')
const manifestPath = path.join(moduleDir, 'companion', 'manifest.json')

let program
let companion

before(async () => {
	program = await KaironProgram.launch({ name: 'Gala', cues: [{ name: 'Accueil', speaker: 'Inès', duration: 600 }] })
	companion = new CompanionChannel(manifestPath)
})

after(async () => {
	await companion?.close()
	await program?.close()
})

const which = process.env.KAIRON_COMPANION_PACKAGE ? 'the packaged module' : "the module's sources"

test(`${which}: registers and starts with its settings`, async () => {
	await companion.until(() => companion.made('register').length === 1, 'the registration')
	const [registration] = companion.made('register')
	assert.equal(registration.connectionId, 'kairon-test')
	assert.equal(registration.verificationToken, 'token-for-test')
	assert.equal(registration.apiVersion, '1.11.3')

	const fields = await companion.call('getConfigFields', {})
	assert.deepEqual(
		fields.fields.map((f) => f.id),
		['info', 'host', 'port', 'code'],
	)

	await companion.call('init', {
		label: 'kairon',
		isFirstInit: false,
		config: { host: '127.0.0.1', port: program.port, code: accessCode },
		lastUpgradeIndex: -1,
		actions: {},
		feedbacks: {},
	})
	const [actions] = companion.made('setActionDefinitions')
	assert.equal(actions.actions.length, 19)
	const [feedbacks] = companion.made('setFeedbackDefinitions')
	assert.equal(feedbacks.feedbacks.length, 13)
	const [variables] = companion.made('setVariableDefinitions')
	assert.equal(variables.variables.length, 12)
	const [presets] = companion.made('setPresetDefinitions')
	assert.equal(Object.keys(presets.presets).length, 17)
})

test('it reaches ok and shows the show in its variables', async () => {
	await companion.until(() => companion.made('set-status').some((s) => s.status === 'ok'), 'the status ok')
	assert.deepEqual(
		companion.made('set-status').map((s) => [s.status, s.message]),
		[
			['connecting', null],
			['ok', null],
		],
	)
	const value = (id) => {
		const sets = companion
			.made('setVariableValues')
			.flatMap((c) => c.newValues)
			.filter((v) => v.id === id)
		return sets.at(-1)?.value
	}
	await companion.until(() => value('show_name') === 'Gala', '$(kairon:show_name) = Gala')
	assert.equal(value('cue_count'), 1)
	assert.equal(value('next_cue_name'), '')
	assert.equal(value('state'), 'stopped')
})

test('a key press runs its action, and a feedback follows the program', async () => {
	await companion.call('updateFeedbacks', {
		feedbacks: {
			lit: {
				id: 'lit',
				controlId: 'bank:1:1',
				feedbackId: 'running',
				options: {},
				isInverted: false,
				upgradeIndex: null,
				disabled: false,
			},
			colour: {
				id: 'colour',
				controlId: 'bank:1:2',
				feedbackId: 'state_colour',
				options: { target: 'text' },
				isInverted: false,
				upgradeIndex: null,
				disabled: false,
			},
		},
	})
	const feedbackValue = (id) =>
		companion
			.made('updateFeedbackValues')
			.flatMap((c) => c.values)
			.filter((v) => v.id === id)
			.at(-1)?.value
	await companion.until(() => feedbackValue('lit') === false, 'the running feedback, off')
	await companion.call('executeAction', {
		action: { id: 'press', controlId: 'bank:1:1', actionId: 'play', options: {}, upgradeIndex: null, disabled: false },
		surfaceId: undefined,
	})
	await waitFor(async () => (await program.state()).running, 'the program running')
	await companion.until(() => feedbackValue('lit') === true, 'the running feedback, lit')
	assert.deepEqual(feedbackValue('colour'), { color: 0x2ecc71, bgcolor: 0x0a0a0c })
	for (const { message } of companion.made('log-message')) assert.ok(!message.includes(accessCode), message)
})
