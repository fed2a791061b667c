// One JSON request to the program's web server over a kept-alive connection, so that a key
// press costs no new TCP handshake.
import http from 'node:http'

const agent = new http.Agent({ keepAlive: true, maxSockets: 4 })

// Resolves to { status, body } (body: the parsed JSON, or null when the answer is not JSON);
// rejects on a network error or when no answer comes within `timeoutMs`.
export function requestJson({ host, port, method, path, body, code, timeoutMs = 3000 }) {
	return new Promise((resolve, reject) => {
		const payload = body === undefined ? null : Buffer.from(JSON.stringify(body))
		const headers = { Accept: 'application/json' }
		if (payload) {
			headers['Content-Type'] = 'application/json'
			headers['Content-Length'] = payload.length
		}
		if (code !== undefined) headers.Authorization = `Bearer ${code}`
		const request = http.request({ host, port, method, path, headers, agent }, (response) => {
			const chunks = []
			response.on('data', (chunk) => chunks.push(chunk))
			response.on('end', () => {
				let parsed = null
				try {
					parsed = JSON.parse(Buffer.concat(chunks).toString('utf8'))
				} catch {
					// not JSON: left null for the caller to judge
				}
				resolve({ status: response.statusCode, body: parsed })
			})
			response.on('error', reject)
		})
		request.setTimeout(timeoutMs, () => request.destroy(new Error(`no answer within ${timeoutMs} ms`)))
		request.on('error', reject)
		request.end(payload ?? undefined)
	})
}
