// The variables, as $(kairon:ID) on a key. They follow the program's state and count by
// themselves between its messages (see view.js).
export const variableDefinitions = [
	{ variableId: 'remaining', name: 'Remaining time, as the stage shows it ("-00:42" in overtime)' },
	{ variableId: 'remaining_seconds', name: 'Remaining time in whole seconds, negative in overtime' },
	{ variableId: 'elapsed', name: 'Time elapsed in the active cue ("Écoulé")' },
	{ variableId: 'cue_name', name: 'Name of the active cue' },
	{ variableId: 'cue_number', name: 'Number of the active cue in the running order (1 is the first)' },
	{ variableId: 'speaker', name: 'Speaker of the active cue' },
	{ variableId: 'next_cue_name', name: 'Name of the next cue ("Suivant")' },
	{ variableId: 'state', name: 'Transport state: stopped, running or paused' },
	{ variableId: 'message', name: 'Message on air' },
	{ variableId: 'show_name', name: 'Name of the show' },
	{ variableId: 'projected_end', name: 'Projected end of the day, HH:MM ("Fin journée")' },
	{ variableId: 'cue_count', name: 'Number of cues in the show' },
]
