// The link to one Kairon: its WebSocket /api/ws for the show and the state (then only what
// changes of them) and a ping every second for the offset of its clock; its HTTP API for the
// commands, each sent with the access code. A link that closes, or where nothing is heard for
// two seconds, is dropped and opened again after 0.5 s, then 1, 2, 4 and at most 5 s.
import WebSocket from 'ws'

import { Feed } from './feed.js'
import { requestJson } from './http.js'
import { ServerClock } from './serverclock.js'

export const pingEveryMs = 1000
export const silenceMs = 2000
export const firstRetryMs = 500
export const longestRetryMs = 5000

// The wait before the attempt after one that waited `ms`.
export const nextRetryMs = (ms) => Math.min(ms * 2, longestRetryMs)

// Companion's status levels, and the words the module shows with them.
export const Status = Object.freeze({
	ok: ['ok', null],
	connecting: ['connecting', null],
	badCode: ['authentication_failure', 'bad access code'],
	notKairon: ['bad_config', 'not a Kairon'],
	otherVersion: ['bad_config', 'another version of Kairon'],
	disconnected: ['disconnected', null],
})

export class KaironLink {
	// `events`: onDocument(doc) with each new state document, onLink(live), onStatus([level,
	// message]), onClockMoved(), log(level, text).
	constructor({ host, port, code }, events, { localNow = Date.now } = {}) {
		Object.assign(this, { host, port, code: code ?? '', events, localNow })
		this.clock = new ServerClock(localNow)
		this.retryMs = firstRetryMs
		this.socket = null
		this.live = false
		this.status = null
		this.stopped = true
	}

	start() {
		this.stopped = false
		this.setStatus(Status.connecting)
		this.open()
	}

	stop() {
		this.stopped = true
		clearTimeout(this.retry)
		this.close()
	}

	setStatus(status) {
		if (this.status === status) return
		this.status = status
		this.events.onStatus(status)
	}

	open() {
		const socket = new WebSocket(`ws://${this.host}:${this.port}/api/ws`, {
			handshakeTimeout: silenceMs,
			perMessageDeflate: false,
		})
		this.socket = socket
		this.clock.reset()
		this.feed = new Feed()
		this.verdict = null // what this attempt found, when it is not the program
		this.listenFor(silenceMs)
		socket.on('open', () => {
			this.ping()
			this.pinger = setInterval(() => this.ping(), pingEveryMs)
		})
		socket.on('message', (data, isBinary) => {
			if (socket === this.socket) this.receive(isBinary ? null : data.toString('utf8'))
		})
		// A server that answers the upgrade with anything but a WebSocket is no Kairon.
		socket.on('unexpected-response', (request, response) => {
			response.resume()
			if (socket !== this.socket) return
			this.verdict = Status.notKairon
			this.events.log('debug', `The server answered /api/ws with HTTP ${response.statusCode}`)
			this.drop()
		})
		socket.on('close', () => socket === this.socket && this.drop())
		socket.on('error', (error) => {
			if (socket !== this.socket) return
			this.events.log('debug', `Connection to ${this.host}:${this.port}: ${error.message}`)
			this.drop()
		})
	}

	ping() {
		this.send({ command: 'ping', t: this.localNow() })
	}

	send(message) {
		if (this.socket?.readyState === WebSocket.OPEN) this.socket.send(JSON.stringify(message))
	}

	listenFor(ms) {
		clearTimeout(this.watchdog)
		this.watchdog = setTimeout(() => this.drop(), ms)
	}

	receive(text) {
		const receivedAt = this.localNow()
		let message = null
		try {
			message = JSON.parse(text)
		} catch {
			// handled below: nothing the program sends
		}
		if (message === null || typeof message !== 'object') {
			this.verdict = Status.notKairon
			this.drop()
			return
		}
		this.listenFor(silenceMs)
		if ('pong' in message) {
			if (this.clock.noteRoundTrip(message.pong, message.serverTimeMs, receivedAt)) this.events.onClockMoved()
			return
		}
		if ('error' in message) {
			this.events.log('debug', `Kairon refused a message: ${message.error}`)
			return
		}
		if (this.feed.seq === null && !Feed.isGreeting(message)) {
			const kairon = message.type === 'show' && typeof message.protocol === 'number'
			this.verdict = kairon ? Status.otherVersion : Status.notKairon
			this.drop()
			return
		}
		const outcome = this.feed.apply(message)
		if (outcome === 'ask-whole') this.send({ command: 'state' })
		if (outcome !== 'changed') return
		if (message.serverTimeMs !== undefined) this.clock.noteArrival(message.serverTimeMs, receivedAt)
		if (!this.live) {
			this.live = true
			this.retryMs = firstRetryMs
			this.events.onLink(true)
			this.checkCode(this.socket)
		}
		this.events.onDocument(this.feed.document())
	}

	// Sets the status from the program's answer to the code check, unless the socket it was
	// made for is gone by then.
	async checkCode(socket) {
		if (this.code === '') {
			this.setStatus(Status.badCode)
			return
		}
		let answer
		try {
			// Changes nothing: 200 when the code is right, 401 when not.
			answer = await this.post('check')
		} catch (error) {
			if (socket !== this.socket) return
			this.events.log('debug', `Checking the access code: ${error.message}`)
			this.drop()
			return
		}
		if (socket !== this.socket) return
		if (answer.status === 401 || answer.status === 429) {
			this.events.log('warn', `Kairon refused the access code: ${answer.body?.error ?? `HTTP ${answer.status}`}`)
		}
		this.judgeAnswer(answer)
	}

	// The status an answer shows: the code refused, or the link good (a command the show could
	// not take, 400, was still let in by its code).
	judgeAnswer(answer) {
		if (answer.status === 401 || answer.status === 429) this.setStatus(Status.badCode)
		else if ((answer.status === 200 || answer.status === 400) && this.live) this.setStatus(Status.ok)
		else if (answer.status === 404 || answer.status === 405) this.setStatus(Status.notKairon)
	}

	post(name, body) {
		return requestJson({
			host: this.host,
			port: this.port,
			method: 'POST',
			path: `/api/${name}`,
			body,
			code: this.code,
		})
	}

	// Sends one command (`name` as the API names it, `body` its fields). Resolves to true when
	// the program applied it; a refusal or a failure is logged (never with the code) and
	// resolves to false.
	async command(name, body) {
		if (this.code === '') {
			this.events.log('warn', `Kairon: "${name}" not sent, no access code is set`)
			this.setStatus(Status.badCode)
			return false
		}
		let answer
		try {
			answer = await this.post(name, body)
		} catch (error) {
			this.events.log('warn', `Kairon: "${name}" failed: ${error.message}`)
			return false
		}
		this.judgeAnswer(answer)
		if (answer.status === 200) return true
		const reason = answer.body?.error ?? `HTTP ${answer.status}`
		this.events.log('warn', `Kairon refused "${name}": ${reason}`)
		return false
	}

	close() {
		const socket = this.socket
		this.socket = null
		clearInterval(this.pinger)
		clearTimeout(this.watchdog)
		if (socket) {
			socket.removeAllListeners('message')
			socket.on('error', () => {}) // a socket closed while connecting reports it
			socket.terminate()
		}
		if (this.live) {
			this.live = false
			this.events.onLink(false)
		}
	}

	// Closes this attempt and plans the next one.
	drop() {
		if (!this.socket || this.stopped) return
		this.close()
		this.setStatus(this.verdict ?? Status.disconnected)
		clearTimeout(this.retry)
		this.retry = setTimeout(() => this.open(), this.retryMs)
		this.retryMs = nextRetryMs(this.retryMs)
	}
}
