// The scripts that bring older saved actions, feedbacks and settings up to this version's
// shapes: none yet, this being the first.
export const upgradeScripts = []
