// Placeholder so the tree configures; the Linux readers replace it.
