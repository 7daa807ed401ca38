// Nothing: a target needs a source, and this one has precompiled headers only.
