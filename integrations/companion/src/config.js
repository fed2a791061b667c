// The connection's settings in Companion: the program's host, its web port and the access
// code shown in its "Réglages" window ("Web" tab, "Code d'accès").

export const defaultConfig = Object.freeze({ host: '127.0.0.1', port: 8080, code: '' })

export const configFields = [
	{
		type: 'static-text',
		id: 'info',
		width: 12,
		label: 'Kairon',
		value:
			'In Kairon, open "Réglages…", tab "Web": turn on "Activer le serveur web", press "Appliquer la configuration web", and copy its "Port" and "Code d\'accès" here.',
	},
	{
		type: 'textinput',
		id: 'host',
		label: 'Kairon host',
		width: 8,
		default: defaultConfig.host,
		required: true,
	},
	{
		type: 'number',
		id: 'port',
		label: 'Web port',
		width: 4,
		default: defaultConfig.port,
		min: 1,
		max: 65535,
		required: true,
	},
	{
		type: 'textinput',
		id: 'code',
		label: 'Access code',
		tooltip: 'Eight characters, as Kairon shows them under "Code d\'accès" in its "Web" settings',
		width: 6,
		default: defaultConfig.code,
		regex: '/^[23456789ABCDEFGHJKLMNPQRSTUVWXYZ]{8}$/',
	},
]

// The settings as the link uses them: the host and code trimmed (the code in capitals, as
// Kairon makes it), the port a whole number, defaults for what is missing.
export function normaliseConfig(config) {
	const host = String(config?.host ?? '').trim() || defaultConfig.host
	const port = Number(config?.port)
	return {
		host,
		port: Number.isInteger(port) && port >= 1 && port <= 65535 ? port : defaultConfig.port,
		code: String(config?.code ?? '')
			.trim()
			.toUpperCase(),
	}
}
