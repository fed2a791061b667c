// The real Kairon program for the tests: started on a private X server of its own (Xvfb, which
// picks a free display number itself), in a private home whose preferences turn the web server
// on, on a free port of the loopback with a known access code, with a one-second splash. It
// can be stopped and started again on the same port. Nothing of the machine's own settings is
// read or written.
import { execFileSync, spawn } from 'node:child_process'
import { randomBytes } from 'node:crypto'
import fs from 'node:fs'
import net from 'node:net'
import os from 'node:os'
import path from 'node:path'
import { fileURLToPath } from 'node:url'

import { requestJson } from '../../src/http.js'
import { waitFor } from './wait.js'

const here = path.dirname(fileURLToPath(import.meta.url))

// The program under test: $KAIRON_BINARY, else the build tree's.
export const kaironBinary = process.env.KAIRON_BINARY ?? path.resolve(here, '../../../../build/src/app/kairon')

export const accessCode = 'K7M2P9QX'

// A TCP port of 127.0.0.1 that nothing listens on.
export function freePort() {
	return new Promise((resolve, reject) => {
		const server = net.createServer()
		server.on('error', reject)
		server.listen(0, '127.0.0.1', () => {
			const { port } = server.address()
			server.close(() => resolve(port))
		})
	})
}

// Resolves when `child` has exited (at once if it already has).
function exited(child) {
	if (child.exitCode !== null || child.signalCode !== null) return Promise.resolve()
	return new Promise((resolve) => child.once('exit', () => resolve()))
}

// Stops `child` with SIGTERM, then SIGKILL if it is still there after `graceMs`.
async function stopChild(child, graceMs = 10000) {
	if (!child || child.exitCode !== null || child.signalCode !== null) return
	child.kill('SIGTERM')
	const timer = setTimeout(() => child.kill('SIGKILL'), graceMs)
	await exited(child)
	clearTimeout(timer)
}

// Xvfb on the first free display, with a cookie of its own; resolves to { display, xauthority,
// stop() }.
async function startXvfb(dir) {
	const cookie = randomBytes(16).toString('hex')
	const serverAuth = path.join(dir, 'server.auth')
	const clientAuth = path.join(dir, 'client.auth')
	execFileSync('xauth', ['-q', '-f', serverAuth, 'add', ':0', '.', cookie], { stdio: 'ignore' })
	// -displayfd: the server writes its display number on fd 3 once it accepts connections.
	const xvfb = spawn(
		'Xvfb',
		['-displayfd', '3', '-screen', '0', '1920x1080x24', '-nolisten', 'tcp', '-noreset', '-auth', serverAuth],
		{ stdio: ['ignore', 'ignore', 'pipe', 'pipe'] },
	)
	let log = ''
	xvfb.stderr.on('data', (chunk) => (log += chunk))
	const number = await new Promise((resolve, reject) => {
		let text = ''
		xvfb.stdio[3].on('data', (chunk) => {
			text += chunk
			if (text.includes('\n')) resolve(text.trim())
		})
		xvfb.once('exit', () => reject(new Error(`Xvfb did not start: ${log}`)))
	})
	const display = `:${number}`
	execFileSync('xauth', ['-q', '-f', clientAuth, 'add', display, '.', cookie], { stdio: 'ignore' })
	return { display, xauthority: clientAuth, stop: () => stopChild(xvfb) }
}

export class KaironProgram {
	// Starts the program on the show `show` (a project object, written as a file); resolves once
	// it serves and has drawn its first frame.
	static async launch(show) {
		const program = new KaironProgram()
		await program.setUp(show)
		await program.start()
		return program
	}

	async setUp(show) {
		await waitFor(() => isExecutable(kaironBinary), `the program at ${kaironBinary}`, {
			timeoutMs: 180000,
			everyMs: 1000,
		})
		this.dir = fs.mkdtempSync(path.join(os.tmpdir(), 'kairon-companion-'))
		this.port = await freePort()
		this.base = `http://127.0.0.1:${this.port}`
		this.x = await startXvfb(this.dir)
		const home = path.join(this.dir, 'home')
		const runtime = path.join(this.dir, 'run')
		fs.mkdirSync(path.join(home, '.config', 'Kairon'), { recursive: true })
		fs.mkdirSync(runtime, { mode: 0o700 })
		fs.writeFileSync(
			path.join(home, '.config', 'Kairon', 'Kairon.conf'),
			`[General]\nwebEnabled=true\nwebPort=${this.port}\nwebAccessCode=${accessCode}\nsplashDuration=1\n`,
		)
		this.showFile = path.join(this.dir, 'show.orvprjct')
		fs.writeFileSync(this.showFile, JSON.stringify(show))
		this.env = {
			...process.env,
			HOME: home,
			XDG_CONFIG_HOME: path.join(home, '.config'),
			XDG_CACHE_HOME: path.join(home, '.cache'),
			XDG_DATA_HOME: path.join(home, '.local', 'share'),
			XDG_RUNTIME_DIR: runtime,
			DISPLAY: this.x.display,
			XAUTHORITY: this.x.xauthority,
			QT_QPA_PLATFORM: 'xcb',
			KAIRON_STARTUP_TRACE: '1',
		}
		delete this.env.WAYLAND_DISPLAY
		this.launches = 0
	}

	async start() {
		this.launches += 1
		const trace = path.join(this.dir, `trace${this.launches}`)
		const err = fs.openSync(trace, 'w')
		this.child = spawn(kaironBinary, [this.showFile], { env: this.env, stdio: ['ignore', 'ignore', err] })
		fs.closeSync(err)
		const child = this.child
		const reported = (mark) => fs.readFileSync(trace, 'utf8').includes(`kairon-startup ${mark}`)
		try {
			await waitFor(
				() => {
					if (child.exitCode !== null) throw new Error(`the program exited (${child.exitCode})`)
					return reported('web-listening') && reported('first-frame')
				},
				'the program to serve and draw',
				{ timeoutMs: 30000, everyMs: 20 },
			)
		} catch (error) {
			throw new Error(`${error.message}\n${fs.readFileSync(trace, 'utf8')}`)
		}
	}

	// Stops the program (SIGTERM: it saves and quits) and waits for its end.
	async stop() {
		await stopChild(this.child)
	}

	// Stops everything and removes the scratch folder.
	async close() {
		await this.stop()
		await this.x?.stop()
		if (this.dir) fs.rmSync(this.dir, { recursive: true, force: true })
	}

	get pid() {
		return this.child.pid
	}

	// The state document, with the local instants the request left and its answer came.
	async state() {
		const sentAt = Date.now()
		const { status, body } = await requestJson({
			host: '127.0.0.1',
			port: this.port,
			method: 'GET',
			path: '/api/state',
		})
		if (status !== 200) throw new Error(`GET /api/state: ${status}`)
		return { ...body, sentAt, receivedAt: Date.now() }
	}

	// A command with the right code; resolves to the answer's status.
	async post(name, body) {
		const answer = await requestJson({
			host: '127.0.0.1',
			port: this.port,
			method: 'POST',
			path: `/api/${name}`,
			body,
			code: accessCode,
		})
		return answer.status
	}
}

function isExecutable(file) {
	try {
		fs.accessSync(file, fs.constants.X_OK)
		return true
	} catch {
		return false
	}
}
