"""What a reader says when a file breaks a rule of its format."""


class BrokenRule(AssertionError):
    pass


def require(holds, what):
    if not holds:
        raise BrokenRule(what)
