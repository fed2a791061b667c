// The show and the state as the program sends them over its WebSocket: both whole on
// connection, then the show again when it is edited and patches of the state (only the fields
// that changed, a field gone being null). Each message takes the next sequence number; after a
// gap the whole show and state are asked for again.

// The version of the messages this module reads; the program's first message says its own.
export const protocolVersion = 2

export class Feed {
	constructor() {
		this.show = null
		this.state = null
		this.seq = null
		this.awaitingWhole = false
	}

	// Whether a first message is the program's greeting in the version this module reads.
	static isGreeting(message) {
		return message?.type === 'show' && message.protocol === protocolVersion
	}

	// Takes one message in; returns "changed" when there is a new document to read, "ask-whole"
	// when the caller must send {"command": "state"} (a message was missed), else null.
	apply(message) {
		const { type, seq } = message
		const whole = type === 'state' || this.seq === null || this.awaitingWhole
		if (!whole && seq !== this.seq + 1) {
			this.awaitingWhole = true
			return 'ask-whole'
		}
		if (type === 'show') {
			this.show = message
			this.seq = seq
			return this.state !== null && !this.awaitingWhole ? 'changed' : null
		}
		if (type === 'state') {
			this.state = { ...message }
			this.awaitingWhole = false
		} else if (type === 'patch' && !this.awaitingWhole && this.state !== null) {
			Object.assign(this.state, message) // a field gone is null, as the document reads it
		} else {
			return null
		}
		this.seq = seq
		return 'changed'
	}

	// The state document as GET /api/state gives it, less the schedule's timetable: the show's
	// name and cues with the state's fields.
	document() {
		if (!this.show || !this.state) return null
		const { type: _t, seq: _s, protocol: _p, ...show } = this.show
		const { type: _type, seq: _seq, ...state } = this.state
		return { ...show, ...state }
	}
}
