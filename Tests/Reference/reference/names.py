"""Names of made files, and the disk as a spot changes it."""

import os

_NAME_LIMIT = 255


def base_name(path):
    """What a region is called: from after the last slash up to the first point."""
    return path.rsplit(b'/', 1)[-1].split(b'.', 1)[0]


def extension(path):
    """From the last point of the whole path, wherever that stands, to its end."""
    point = path.rfind(b'.')
    return path[point:] if point >= 0 else b''


def copy_base(source, folder):
    return folder + b'/' + base_name(source)


def derived_base(source, folder, suffix):
    if folder is not None:
        return copy_base(source, folder) + suffix
    point = source.rfind(b'.')
    return (source[:point] if point >= 0 else source) + suffix


class Disk:
    """The files and folders below some roots as they were at first, and those that have been written since."""

    def __init__(self, roots):
        self.folders = set()
        self.files = set()
        self.written = {}
        for root in roots:
            for folder, _, names in os.walk(root):
                self.folders.add(os.path.normpath(folder))
                self.files.update(os.path.normpath(os.path.join(folder, name)) for name in names)

    @staticmethod
    def plain(path):
        return os.path.normpath(path)

    def exists(self, path):
        plain = os.path.normpath(path)
        return plain in self.files or plain in self.folders

    def free_name(self, base, tail):
        number = 0
        while True:
            path = base + (b'.%d' % number if number else b'') + tail
            number += 1
            if not self.exists(path):
                return path

    def can_create(self, path):
        folder, name = os.path.split(path)
        return os.path.normpath(folder) in self.folders and len(name) <= _NAME_LIMIT

    def write(self, path, content):
        plain = os.path.normpath(path)
        self.files.add(plain)
        self.written[plain] = content
