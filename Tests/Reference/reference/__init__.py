"""A second implementation of the system's behaviour, kept apart from the first.

It shares no code with the program and reads none of it, so that a mistake would have to be made twice to stay
unseen. Clarity is worth more than speed here, but for the loops over samples.
"""
