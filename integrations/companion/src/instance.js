// The thin glue to Companion: its InstanceBase carries the calls the module makes, and the
// module (module.js) does the rest.
import { InstanceBase } from '@companion-module/base'

import { configFields } from './config.js'
import { KaironModule } from './module.js'

export class KaironInstance extends InstanceBase {
	async init(config) {
		this.kairon = new KaironModule(this)
		this.kairon.init(config)
	}

	async configUpdated(config) {
		this.kairon.configUpdated(config)
	}

	async destroy() {
		this.kairon?.destroy()
	}

	getConfigFields() {
		return configFields
	}
}
