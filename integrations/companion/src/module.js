// The module itself, on any host that offers the calls of Companion's InstanceBase that it uses
// (setActionDefinitions, setFeedbackDefinitions, setVariableDefinitions, setPresetDefinitions,
// setVariableValues, checkFeedbacks, updateStatus, log): Companion through the thin class of
// instance.js, or a test's fake.
import { actionDefinitions } from './actions.js'
import { normaliseConfig } from './config.js'
import { KaironLink } from './connection.js'
import { feedbackDefinitions, feedbackIdsFor } from './feedbacks.js'
import { presetDefinitions } from './presets.js'
import { variableDefinitions } from './variables.js'
import { offlineView, readView } from './view.js'

export class KaironModule {
	constructor(host, { localNow = Date.now } = {}) {
		this.host = host
		this.localNow = localNow
		this.doc = null
		this.view = offlineView
		this.timer = null
		this.link = null
	}

	init(config) {
		this.host.setActionDefinitions(actionDefinitions((name, body) => this.command(name, body)))
		this.host.setFeedbackDefinitions(feedbackDefinitions(() => this.view))
		this.host.setVariableDefinitions(variableDefinitions)
		this.host.setPresetDefinitions(presetDefinitions)
		this.publish(offlineView, true)
		this.connect(config)
	}

	configUpdated(config) {
		this.link?.stop()
		this.forget()
		this.connect(config)
	}

	destroy() {
		this.link?.stop()
		this.link = null
		clearTimeout(this.timer)
	}

	connect(config) {
		const settings = normaliseConfig(config)
		this.link = new KaironLink(
			settings,
			{
				onDocument: (doc) => this.takeDocument(doc),
				onLink: (live) => {
					if (!live) this.forget()
				},
				onStatus: ([level, message]) => this.host.updateStatus(level, message),
				onClockMoved: () => this.refresh(),
				log: (level, text) => this.host.log(level, text),
			},
			{ localNow: this.localNow },
		)
		this.link.start()
	}

	// A new state document from the program.
	takeDocument(doc) {
		this.doc = doc
		this.refresh()
	}

	// The program's clock now, as this module estimates it.
	now() {
		return this.link ? this.link.clock.now() : this.localNow()
	}

	command(name, body) {
		if (!this.link) return Promise.resolve(false)
		return this.link.command(name, body)
	}

	// Back to the offline view: the link is gone.
	forget() {
		this.doc = null
		clearTimeout(this.timer)
		this.timer = null
		this.publish(offlineView)
	}

	// Reads the view at this instant, publishes what changed, and comes back when the next
	// change is due on the program's clock (one millisecond past it, so that a value exactly on
	// a whole second shows that second).
	refresh() {
		clearTimeout(this.timer)
		this.timer = null
		if (!this.doc) return
		const view = readView(this.doc, this.now())
		this.publish(view)
		if (view.nextChangeAt !== null) {
			const wait = Math.max(0, view.nextChangeAt - this.now()) + 1
			this.timer = setTimeout(() => this.refresh(), wait)
		}
	}

	publish(view, everything = false) {
		const previous = this.view
		this.view = view
		const changed = {}
		for (const [id, value] of Object.entries(view.variables)) {
			if (everything || previous.variables[id] !== value) changed[id] = value
		}
		if (Object.keys(changed).length > 0) this.host.setVariableValues(changed)
		const feedbacks = everything ? feedbackIdsFor(null, view) : feedbackIdsFor(previous, view)
		if (feedbacks.length > 0) this.host.checkFeedbacks(...feedbacks)
	}
}
