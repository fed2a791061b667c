// Waiting on a condition rather than on the wall clock: polls until it holds or a deadline.

// Resolves with the first truthy result of `probe()` (sync or async), tried every `everyMs`;
// rejects naming `what` once `timeoutMs` have passed.
export async function waitFor(probe, what, { timeoutMs = 5000, everyMs = 20 } = {}) {
	const deadline = Date.now() + timeoutMs
	let lastError = null
	for (;;) {
		try {
			const result = await probe()
			if (result) return result
			lastError = null
		} catch (error) {
			lastError = error
		}
		if (Date.now() >= deadline) {
			const why = lastError ? ` (last error: ${lastError.message})` : ''
			throw new Error(`timed out after ${timeoutMs} ms waiting for ${what}${why}`)
		}
		await new Promise((resolve) => setTimeout(resolve, everyMs))
	}
}

// Resolves at the instant `atMs` of this machine's clock (at once if it is past): for a test
// that must look at a given moment of a running countdown, not for a condition.
export function at(atMs) {
	return new Promise((resolve) => setTimeout(resolve, Math.max(0, atMs - Date.now())))
}
