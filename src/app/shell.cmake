# (to be filled)
