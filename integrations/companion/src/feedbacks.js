// The feedbacks: lit keys for the program's states, in the colours of its displays, and one
// that paints a key in the stage's own state colour.
import { maxCueNumber } from './actions.js'
import { palette } from './theme.js'

// Each boolean feedback: the flag of the view it shows, its name and its default style.
const booleans = [
	['running', 'running', 'Running', 'A cue runs (not paused)', palette.stateNormal, palette.bgDeep],
	['paused', 'paused', 'Paused', 'The running cue is paused ("PAUSE")', palette.stateWarning, palette.bgDeep],
	[
		'warning',
		'warning',
		'In warning',
		"The time shown is at or below the cue's warning threshold",
		palette.stateWarning,
		palette.bgDeep,
	],
	[
		'danger',
		'danger',
		'In danger',
		"The time shown is at or below the cue's danger threshold",
		palette.stateDanger,
		palette.textPrimary,
	],
	['overtime', 'overtime', 'In overtime', 'The time shown is below zero', palette.stateOvertime, palette.textPrimary],
	[
		'blackout',
		'blackout',
		'Blackout on',
		'The stage display is blacked out ("BLACKOUT")',
		palette.accent,
		palette.textPrimary,
	],
	[
		'blink',
		'blink',
		'Blinking',
		'The stage display blinks (for 3 seconds after "Blink")',
		palette.accent,
		palette.textPrimary,
	],
	[
		'freeze',
		'freeze',
		'Freeze on',
		'The stage display\'s digits are frozen ("FREEZE")',
		palette.accent,
		palette.textPrimary,
	],
	[
		'clock_mode',
		'clockMode',
		'Clock mode on',
		'The stage display shows the time of day ("HORLOGE")',
		palette.accent,
		palette.textPrimary,
	],
	['message', 'message', 'Message on air', 'A message is on air', palette.accent, palette.textPrimary],
	[
		'urgent_message',
		'urgentMessage',
		'Urgent message on air',
		'An urgent message is on air',
		palette.stateOvertime,
		palette.textPrimary,
	],
]

// Which flag of the view each boolean feedback reads.
const flagOf = Object.fromEntries(booleans.map(([id, flag]) => [id, flag]))

// `currentView()` gives the module's view at this instant (see view.js).
export function feedbackDefinitions(currentView) {
	const definitions = {}
	for (const [id, flag, name, description, bgcolor, color] of booleans) {
		definitions[id] = {
			type: 'boolean',
			name,
			description,
			defaultStyle: { bgcolor, color },
			options: [],
			callback: () => currentView().flags[flag] === true,
		}
	}
	definitions.active_cue = {
		type: 'boolean',
		name: 'This cue is active',
		description: 'The cue numbered N in the running order is the active one',
		defaultStyle: { bgcolor: palette.accent, color: palette.textPrimary },
		options: [{ type: 'number', id: 'cue', label: 'Cue number', default: 1, min: 1, max: maxCueNumber, step: 1 }],
		callback: (feedback) => currentView().flags.activeCueNumber === Number(feedback.options.cue),
	}
	definitions.state_colour = {
		type: 'advanced',
		name: 'State colour',
		description:
			"Paints the key in the stage's colour for the time shown: the calm green or the cue's own colour, then warning, danger and overtime; grey with no active cue",
		options: [
			{
				type: 'dropdown',
				id: 'target',
				label: 'Paint',
				default: 'text',
				choices: [
					{ id: 'text', label: 'The text, on black' },
					{ id: 'background', label: 'The background, with black text' },
				],
			},
		],
		callback: (feedback) => {
			const colour = currentView().colour
			return feedback.options.target === 'background'
				? { bgcolor: colour, color: palette.bgDeep }
				: { color: colour, bgcolor: palette.bgDeep }
		},
	}
	return definitions
}

// The feedbacks whose answer differs between the views `before` (null: unknown) and `after`.
export function feedbackIdsFor(before, after) {
	const ids = []
	for (const [id, flag] of Object.entries(flagOf)) {
		if (!before || before.flags[flag] !== after.flags[flag]) ids.push(id)
	}
	if (!before || before.flags.activeCueNumber !== after.flags.activeCueNumber) ids.push('active_cue')
	if (!before || before.colour !== after.colour) ids.push('state_colour')
	return ids
}
