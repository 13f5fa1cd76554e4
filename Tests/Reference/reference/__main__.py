"""Prints what the second implementation makes of a project file."""

import json
import os
import sys

from .project import Project
from .view import Model, info

project = Project(os.fsencode(os.path.abspath(sys.argv[1])))
for line in project.said:
    sys.stderr.buffer.write(line + b'\n')
print(json.dumps(info(Model(project)), ensure_ascii=False))
