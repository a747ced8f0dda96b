# No sources yet: the panel comes with its own control table.
