// The ready-made keys: the transport, the time in the stage's colour, the cue's name, the
// adjustments, the stage's switches lit while on, and "next cue" showing its name. Their faces
// carry the labels of the program's console.
import { palette } from './theme.js'

const keyStyle = (text, size = '18') => ({ text, size, color: palette.textPrimary, bgcolor: palette.bgPanel })

// A key that runs `actionId` (with `options`) when pressed, lit by the feedback `lit` if given.
function key(category, name, text, actionId, { options = {}, lit = null, size } = {}) {
	return {
		type: 'button',
		category,
		name,
		style: keyStyle(text, size),
		feedbacks: lit ? [{ feedbackId: lit, options: {} }] : [],
		steps: [{ down: [{ actionId, options }], up: [] }],
	}
}

export const presetDefinitions = {
	play: key('Transport', 'Play', 'PLAY', 'play', { lit: 'running' }),
	pause: key('Transport', 'Pause / resume', 'PAUSE', 'pause', { lit: 'paused' }),
	stop: key('Transport', 'Stop', 'STOP', 'stop'),
	reset: key('Transport', 'Reset', 'RESET', 'reset'),
	prev: key('Transport', 'Previous cue', 'PRÉCÉDENT', 'prev', { size: '14' }),
	next: key('Transport', 'Next cue', 'SUIVANT', 'next', { size: '14' }),
	next_named: key('Transport', 'Next cue, showing its name', 'Suivant :\\n$(kairon:next_cue_name)', 'next', {
		size: '14',
	}),
	remaining: {
		type: 'button',
		category: 'Time',
		name: 'Remaining time in the state colour',
		style: { text: '$(kairon:remaining)', size: 'auto', color: palette.textMuted, bgcolor: palette.bgDeep },
		feedbacks: [{ feedbackId: 'state_colour', options: { target: 'text' } }],
		steps: [{ down: [{ actionId: 'pause', options: {} }], up: [] }],
	},
	cue_name: {
		type: 'button',
		category: 'Time',
		name: 'Active cue name',
		style: { text: '$(kairon:cue_name)', size: 'auto', color: palette.textPrimary, bgcolor: palette.bgDeep },
		feedbacks: [],
		steps: [],
	},
	plus_1min: key('Adjust', 'Add one minute', '+1m', 'adjust_plus_1min', { size: '24' }),
	minus_1min: key('Adjust', 'Remove one minute', '-1m', 'adjust_minus_1min', { size: '24' }),
	plus_30s: key('Adjust', 'Add 30 seconds', '+30s', 'adjust_plus_30s', { size: '24' }),
	blackout: key('Stage', 'Blackout on/off', 'BLACKOUT', 'blackout', { lit: 'blackout', size: '14' }),
	blink: key('Stage', 'Blink', 'BLINK', 'blink', { lit: 'blink' }),
	freeze: key('Stage', 'Freeze on/off', 'FREEZE', 'freeze', { lit: 'freeze' }),
	clock_mode: key('Stage', 'Clock mode on/off', 'HORLOGE', 'clockmode', { lit: 'clock_mode', size: '14' }),
	message_off: key('Stage', 'Message off', 'MESSAGE\\nOFF', 'message_off', { lit: 'message', size: '14' }),
}
