// The program's palette (its AppTheme), as Companion's colour numbers 0xRRGGBB, and the
// countdown's state colour as the stage display picks it.

export const rgb = (red, green, blue) => (red << 16) | (green << 8) | blue

export const palette = Object.freeze({
	accent: rgb(255, 107, 0),
	bgDeep: rgb(10, 10, 12),
	bgPanel: rgb(26, 26, 30),
	textPrimary: rgb(255, 255, 255),
	textSecondary: rgb(184, 184, 192),
	textMuted: rgb(112, 112, 120),
	stateNormal: rgb(46, 204, 113),
	stateWarning: rgb(241, 196, 15),
	stateDanger: rgb(231, 76, 60),
	stateOvertime: rgb(255, 59, 48),
})

// "#RRGGBB" (as the state document writes a cue's colour) as a colour number; null for
// anything else.
export function colourOfHex(text) {
	const match = typeof text === 'string' ? /^#([0-9a-fA-F]{6})$/.exec(text) : null
	return match ? parseInt(match[1], 16) : null
}

// The phase of a countdown showing `value` seconds of `cue`, first match wins: no cue →
// "idle"; below zero → "overtime"; at or below the danger threshold → "danger"; at or below the
// warning threshold → "warning"; else "normal" (drawn in the cue's own colour when it has one).
export function countdownPhase(cue, value) {
	if (!cue) return 'idle'
	if (value < 0) return 'overtime'
	if (value <= cue.dangerThreshold) return 'danger'
	if (value <= cue.warningThreshold) return 'warning'
	return 'normal'
}

// The colour of that countdown on the stage.
export function stateColour(cue, value) {
	switch (countdownPhase(cue, value)) {
		case 'idle':
			return palette.textMuted
		case 'overtime':
			return palette.stateOvertime
		case 'danger':
			return palette.stateDanger
		case 'warning':
			return palette.stateWarning
		default:
			return colourOfHex(cue.color) ?? palette.stateNormal
	}
}
