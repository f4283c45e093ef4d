"""The real program in a desktop of its own: what the end-to-end tests stand on."""
