// The link's status against servers that are not the program: one that answers HTTP but is no
// Kairon, a WebSocket server that speaks something else or another version, and a port where
// connections are dropped at once (the attempts then come 0.5 s and 1 s apart).
import assert from 'node:assert/strict'
import http from 'node:http'
import net from 'node:net'
import { afterEach, test } from 'node:test'

import { WebSocketServer } from 'ws'

import { KaironModule } from '../src/module.js'
import { FakeHost } from './support/fake-host.js'
import { freePort } from './support/kairon-program.js'

const code = 'K7M2P9QX'
const cleanups = []
afterEach(async () => {
	while (cleanups.length) await cleanups.pop()()
})

function startModule(port) {
	const host = new FakeHost()
	const kairon = new KaironModule(host)
	kairon.init({ host: '127.0.0.1', port, code })
	cleanups.push(() => kairon.destroy())
	return host
}

function listen(server) {
	return new Promise((resolve) => server.listen(0, '127.0.0.1', () => resolve(server.address().port)))
}

function closeServer(server) {
	return new Promise((resolve) => {
		server.closeAllConnections?.()
		server.close(() => resolve())
	})
}

const noSecretIn = (host) => {
	for (const { text } of host.logs) assert.ok(!text.includes(code), `the code is in the log line ${text}`)
}

test('a web server that is not Kairon: "not a Kairon"', async () => {
	const requests = []
	const server = http.createServer((request, response) => {
		requests.push(`${request.method} ${request.url}`)
		response.writeHead(404, { 'Content-Type': 'text/html' })
		response.end('<h1>Not found</h1>')
	})
	const port = await listen(server)
	cleanups.push(() => closeServer(server))
	const host = startModule(port)
	await host.until(() => host.status?.[0] === 'bad_config', 'the status "not a Kairon"')
	assert.deepEqual(
		host.statuses.map((s) => [s.level, s.message]),
		[
			['connecting', null],
			['bad_config', 'not a Kairon'],
		],
	)
	assert.equal(requests[0], 'GET /api/ws')
	assert.equal(host.values.state, 'disconnected')
	noSecretIn(host)
})

test('a WebSocket server that speaks something else, or another version of Kairon', async () => {
	for (const [greeting, message] of [
		[{ hello: 'world' }, 'not a Kairon'],
		[{ type: 'show', protocol: 1, seq: 1 }, 'another version of Kairon'],
	]) {
		const server = new WebSocketServer({ host: '127.0.0.1', port: 0 })
		await new Promise((resolve) => server.once('listening', resolve))
		server.on('connection', (socket) => socket.send(JSON.stringify(greeting)))
		cleanups.push(() => new Promise((resolve) => server.close(resolve)))
		const host = startModule(server.address().port)
		await host.until(() => host.status?.[0] === 'bad_config', `the status "${message}"`)
		assert.deepEqual(host.status, ['bad_config', message], JSON.stringify(greeting))
		assert.equal(host.values.remaining, '--:--')
	}
})

test('connections dropped at once: connecting, then disconnected, tried again after 0.5 s then 1 s', async () => {
	const attempts = []
	const server = net.createServer((socket) => {
		attempts.push(Date.now())
		socket.destroy()
	})
	const port = await listen(server)
	cleanups.push(() => new Promise((resolve) => server.close(resolve)))
	const host = startModule(port)
	await host.until(() => attempts.length >= 3, 'three attempts', 4000)
	const gaps = [attempts[1] - attempts[0], attempts[2] - attempts[1]]
	assert.ok(Math.abs(gaps[0] - 500) <= 150, `first wait ${gaps[0]} ms`)
	assert.ok(Math.abs(gaps[1] - 1000) <= 150, `second wait ${gaps[1]} ms`)
	assert.deepEqual(
		host.statuses.map((s) => [s.level, s.message]),
		[
			['connecting', null],
			['disconnected', null],
		],
	)
	noSecretIn(host)
})

test('nothing listening: disconnected', async () => {
	const host = startModule(await freePort())
	await host.until(() => host.status?.[0] === 'disconnected', 'the status "disconnected"')
	assert.deepEqual(host.statuses[0].level, 'connecting')
})
