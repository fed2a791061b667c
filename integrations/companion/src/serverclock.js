// The offset of the program's wall clock from this machine's, from ping round trips: each
// sample assumes the answer was made half way through its trip, and the fastest of the recent
// trips is trusted, its error being at most half of it.
export class ServerClock {
	static keptSamples = 10

	constructor(localNow = Date.now) {
		this.localNow = localNow
		this.samples = []
		this.offset = 0
	}

	reset() {
		this.samples = []
	}

	// A state document on arrival: good to the length of one trip, used until a round trip.
	noteArrival(serverMs, receivedAt) {
		if (this.samples.length === 0 && Number.isFinite(serverMs)) this.offset = serverMs - receivedAt
	}

	// Returns whether the estimate moved by a millisecond or more.
	noteRoundTrip(sentAt, serverMs, receivedAt) {
		const trip = receivedAt - sentAt
		if (!Number.isFinite(trip) || trip < 0 || !Number.isFinite(serverMs)) return false
		this.samples.push({ trip, offset: serverMs - (sentAt + receivedAt) / 2 })
		if (this.samples.length > ServerClock.keptSamples) this.samples.shift()
		const best = this.samples.reduce((a, b) => (b.trip < a.trip ? b : a))
		const moved = Math.abs(best.offset - this.offset) >= 1
		this.offset = best.offset
		return moved
	}

	// The program's wall clock now, ms since the epoch.
	now() {
		return this.localNow() + this.offset
	}
}
