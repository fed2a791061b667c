// The module's entry point, as Companion starts it.
import { runEntrypoint } from '@companion-module/base'

import { KaironInstance } from './instance.js'
import { upgradeScripts } from './upgrades.js'

runEntrypoint(KaironInstance, upgradeScripts)
