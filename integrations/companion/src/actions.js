// The actions: each one command of the program's web API, with the API's names and limits.

// The API's bounds: an adjustment of a day at most either way; rows up to a million.
export const maxAdjustSeconds = 86400
export const maxCueNumber = 1000000

const doorsPattern = /^([01][0-9]|2[0-3]):[0-5][0-9]$/

// An action without options that sends the command `command` with `body`.
const plain = (send, name, description, command, body) => ({
	name,
	description,
	options: [],
	callback: () => send(command, body),
})

// `send(command, body)` sends one command and resolves to whether the program applied it.
export function actionDefinitions(send) {
	return {
		play: plain(send, 'Play', 'Starts the selected cue, else the active one, else the first', 'play'),
		pause: plain(send, 'Pause / resume', 'Pauses the running cue, or resumes it when paused', 'pause'),
		stop: plain(send, 'Stop', 'Stops the clock', 'stop'),
		next: plain(send, 'Next cue', 'Starts the next cue (stops after the last)', 'next'),
		prev: plain(send, 'Previous cue', 'Starts the previous cue', 'prev'),
		reset: plain(send, 'Reset', 'Restarts the active cue from its full time', 'reset'),
		start_cue: {
			name: 'Start cue N',
			description: 'Starts the cue numbered N in the running order (1 is the first)',
			options: [
				{
					type: 'number',
					id: 'cue',
					label: 'Cue number',
					default: 1,
					min: 1,
					max: maxCueNumber,
					step: 1,
					required: true,
				},
			],
			callback: (action) => send('start', { index: Math.round(Number(action.options.cue)) - 1 }),
		},
		adjust: {
			name: 'Adjust by N seconds',
			description: 'Adds seconds to the remaining time (negative removes), a day at most either way',
			options: [
				{
					type: 'number',
					id: 'seconds',
					label: 'Seconds (negative removes)',
					default: 60,
					min: -maxAdjustSeconds,
					max: maxAdjustSeconds,
					step: 1,
					required: true,
				},
			],
			callback: (action) => send('adjust', { seconds: Number(action.options.seconds) }),
		},
		adjust_plus_1min: plain(send, 'Add one minute', 'Adds 60 seconds to the remaining time ("+1m")', 'adjust', {
			seconds: 60,
		}),
		adjust_minus_1min: plain(
			send,
			'Remove one minute',
			'Removes 60 seconds from the remaining time ("-1m")',
			'adjust',
			{ seconds: -60 },
		),
		adjust_plus_30s: plain(send, 'Add 30 seconds', 'Adds 30 seconds to the remaining time', 'adjust', { seconds: 30 }),
		message: {
			name: 'Message on air',
			description: "Puts a message on the stage display's banner; Companion variables in it are expanded",
			options: [
				{ type: 'textinput', id: 'text', label: 'Text', default: '', useVariables: true },
				{ type: 'checkbox', id: 'urgent', label: 'Urgent (flashing red banner)', default: false },
			],
			callback: async (action, context) => {
				const text = await context.parseVariablesInString(String(action.options.text ?? ''))
				return send('message', { text, urgent: action.options.urgent === true })
			},
		},
		message_off: plain(send, 'Message off', 'Takes the message off air', 'message', { text: null }),
		blackout: plain(send, 'Blackout on/off', 'Blacks the stage display out, or brings it back', 'blackout'),
		blink: plain(send, 'Blink', 'Flashes the stage display for 3 seconds', 'blink'),
		freeze: plain(send, 'Freeze on/off', "Freezes the stage display's digits, or releases them", 'freeze'),
		clockmode: plain(
			send,
			'Clock mode on/off',
			'Shows the time of day on the stage display, or the timer again',
			'clockmode',
		),
		doors: {
			name: 'Doors at HH:MM',
			description: 'Counts down to the doors opening at that time of day (the next one, in the venue)',
			options: [
				{
					type: 'textinput',
					id: 'at',
					label: 'Time (HH:MM, 24-hour clock)',
					default: '20:00',
					regex: `/${doorsPattern.source}/`,
					useVariables: true,
				},
			],
			callback: async (action, context) => {
				// A time the program cannot read is refused by it, and the refusal logged.
				const at = (await context.parseVariablesInString(String(action.options.at ?? ''))).trim()
				return send('doors', { at })
			},
		},
		doors_off: plain(send, 'Doors off', 'Cancels the doors countdown', 'doors', { at: null }),
	}
}
