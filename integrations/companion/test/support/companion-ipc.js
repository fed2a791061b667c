// Companion's side of a module's IPC channel, for a test: the module's entry point is started as
// Companion starts it (a child process with an IPC channel, MODULE_MANIFEST, CONNECTION_ID and
// VERIFICATION_TOKEN in its environment); its registration is accepted and every call it makes
// is recorded; calls are made to it as Companion makes them.
import { fork } from 'node:child_process'
import fs from 'node:fs'
import path from 'node:path'

export class CompanionChannel {
	// `manifestPath`: the module's companion/manifest.json, whose runtime.entrypoint is started.
	constructor(manifestPath) {
		const manifest = JSON.parse(fs.readFileSync(manifestPath, 'utf8'))
		this.entry = path.resolve(path.dirname(manifestPath), manifest.runtime.entrypoint)
		this.calls = [] // { name, payload } in the order received
		this.pending = new Map()
		this.nextId = 1
		this.watchers = new Set()
		this.output = ''
		this.child = fork(this.entry, [], {
			env: {
				...process.env,
				MODULE_MANIFEST: manifestPath,
				CONNECTION_ID: 'kairon-test',
				VERIFICATION_TOKEN: 'token-for-test',
			},
			stdio: ['ignore', 'pipe', 'pipe', 'ipc'],
		})
		this.child.stdout.on('data', (chunk) => (this.output += chunk))
		this.child.stderr.on('data', (chunk) => (this.output += chunk))
		this.child.on('message', (message) => this.receive(message))
	}

	receive(message) {
		if (message.direction === 'response') {
			const callback = this.pending.get(message.callbackId)
			this.pending.delete(message.callbackId)
			const payload = message.payload ? JSON.parse(message.payload) : undefined
			if (callback) message.success ? callback.resolve(payload) : callback.reject(new Error(JSON.stringify(payload)))
			return
		}
		const payload = message.payload ? JSON.parse(message.payload) : undefined
		this.calls.push({ name: message.name, payload })
		if (message.callbackId) {
			let answer = {}
			if (message.name === 'parseVariablesInString') answer = { text: payload.text, variableIds: [] }
			this.child.send({
				direction: 'response',
				callbackId: message.callbackId,
				success: true,
				payload: JSON.stringify(answer),
			})
		}
		for (const check of [...this.watchers]) check()
	}

	// Calls `name` in the module, as Companion does; resolves to its answer.
	call(name, payload) {
		const callbackId = this.nextId++
		return new Promise((resolve, reject) => {
			this.pending.set(callbackId, { resolve, reject })
			this.child.send({ direction: 'call', name, payload: JSON.stringify(payload), callbackId })
		})
	}

	// The payloads of the calls named `name` the module made.
	made(name) {
		return this.calls.filter((c) => c.name === name).map((c) => c.payload)
	}

	// Resolves once `condition()` holds; rejects after `timeoutMs`, with the module's output.
	until(condition, what, timeoutMs = 5000) {
		return new Promise((resolve, reject) => {
			const check = () => {
				const result = condition()
				if (!result) return
				clearTimeout(timer)
				this.watchers.delete(check)
				resolve(result)
			}
			const timer = setTimeout(() => {
				this.watchers.delete(check)
				reject(new Error(`timed out after ${timeoutMs} ms waiting for ${what}; module output:\n${this.output}`))
			}, timeoutMs)
			this.watchers.add(check)
			check()
		})
	}

	async close() {
		if (this.child.exitCode !== null || this.child.signalCode !== null) return
		const exited = new Promise((resolve) => this.child.once('exit', resolve))
		this.child.kill('SIGTERM')
		await exited
	}
}
