// A stand-in for Companion: it offers the calls of InstanceBase that the module makes and
// records them (definitions, variable values with the instant each was set, feedback checks,
// statuses, log lines), and runs the module's callbacks as Companion would.
export class FakeHost {
	constructor() {
		this.actions = null
		this.feedbacks = null
		this.variableDefinitions = null
		this.presets = null
		this.values = {}
		this.valueLog = [] // { at, id, value } in the order set
		this.checked = [] // { at, ids }
		this.statuses = [] // { at, level, message }
		this.logs = [] // { level, text }
		this.watchers = new Set()
	}

	setActionDefinitions(definitions) {
		this.actions = definitions
	}

	setFeedbackDefinitions(definitions) {
		this.feedbacks = definitions
	}

	setVariableDefinitions(definitions) {
		this.variableDefinitions = definitions
	}

	setPresetDefinitions(definitions) {
		this.presets = definitions
	}

	setVariableValues(values) {
		const at = Date.now()
		for (const [id, value] of Object.entries(values)) {
			this.values[id] = value
			this.valueLog.push({ at, id, value })
		}
		this.notify()
	}

	checkFeedbacks(...ids) {
		this.checked.push({ at: Date.now(), ids })
		this.notify()
	}

	updateStatus(level, message = null) {
		this.statuses.push({ at: Date.now(), level, message: message ?? null })
		this.notify()
	}

	log(level, text) {
		this.logs.push({ level, text })
	}

	// The last status, as [level, message].
	get status() {
		const last = this.statuses.at(-1)
		return last ? [last.level, last.message] : null
	}

	// Companion's parsing of $(connection:variable) in a text, for this module's own variables.
	async parseVariablesInString(text) {
		return text.replace(/\$\(kairon:([a-z_]+)\)/g, (_, id) => String(this.values[id] ?? ''))
	}

	// Runs action `id` with `options`, as a key press would; resolves to the callback's result.
	runAction(id, options = {}) {
		const definition = this.actions[id]
		if (!definition) throw new Error(`no action ${id}`)
		const event = { id: 'a1', controlId: 'bank:1', actionId: id, options, surfaceId: undefined }
		return definition.callback(event, { parseVariablesInString: (text) => this.parseVariablesInString(text) })
	}

	// What feedback `id` answers with `options` now.
	feedback(id, options = {}) {
		const definition = this.feedbacks[id]
		if (!definition) throw new Error(`no feedback ${id}`)
		const event = { type: definition.type, id: 'f1', controlId: 'bank:1', feedbackId: id, options }
		return definition.callback(event, { parseVariablesInString: (text) => this.parseVariablesInString(text) })
	}

	// Resolves once `condition()` holds (checked at each call of the module and every 20 ms);
	// rejects with `what` after `timeoutMs`.
	until(condition, what, timeoutMs = 5000) {
		return new Promise((resolve, reject) => {
			const check = () => {
				let result
				try {
					result = condition()
				} catch (error) {
					finish(error)
					return
				}
				if (result) finish(null, result)
			}
			const finish = (error, result) => {
				clearTimeout(timer)
				clearInterval(poll)
				this.watchers.delete(check)
				if (error) reject(error)
				else resolve(result)
			}
			const timer = setTimeout(
				() => finish(new Error(`timed out after ${timeoutMs} ms waiting for ${what}`)),
				timeoutMs,
			)
			const poll = setInterval(check, 20)
			this.watchers.add(check)
			check()
		})
	}

	notify() {
		for (const check of [...this.watchers]) check()
	}
}
