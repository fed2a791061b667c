import { generateEslintConfig } from '@companion-module/tools/eslint/config.mjs'

const base = await generateEslintConfig({ ignores: ['pkg/**'] })

export default [
	...base,
	// The module is written as ES modules ("type": "module").
	{ files: ['**/*.js'], languageOptions: { sourceType: 'module' } },
	// Node's test runner works from 18.19 on, though Node 18 calls it experimental.
	{ files: ['test/**/*.js'], rules: { 'n/no-unsupported-features/node-builtins': 'off' } },
]
