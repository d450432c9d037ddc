"""What a power failure leaves of a directory, computed from the calls that fault_points.cpp recorded.

The model: a file's content is durable once the file was synchronised, a name (made, renamed, removed)
once its directory was. What came later may be lost: of contents any write, in any order; of names the
last changes, as file systems keep the order of these. A write is kept or lost as a whole.
"""
import collections
import os
import pathlib
import random

Call = collections.namedtuple("Call", "number kind error inode first second path data")

LOSSES = ("lost", "lost-data", "lost-some")


def read_log(path):
    """The calls in the order in which they were carried out."""
    log = pathlib.Path(path).read_bytes()
    calls, at = [], 8  # behind the counter
    while at < len(log):
        end = log.index(b"\n", at)
        number, kind, error, inode, first, second, name = log[at:end].decode().split(" ", 6)
        has_data = kind == "write" and error == "0"
        at = end + 1 + (int(second) if has_data else 0)
        call = Call(int(number), kind, int(error), int(inode), int(first), int(second), name, log[end + 1:at])
        calls.append(call)
    return calls


class File:
    def __init__(self, content=b""):
        self.durable = content
        self.pending = []  # (offset, bytes) of a write, (size, None) of a truncation

    def content(self, keep=lambda: True):
        content = bytearray(self.durable)
        for place, data in self.pending:
            if not keep():
                continue
            content.extend(bytes(max(0, place - len(content))))
            if data is None:
                del content[place:]
            else:
                content[place:place + len(data)] = data
        return bytes(content)

    def synchronise(self):
        self.durable, self.pending = self.content(), []


class Disk:
    """Made before the program runs, then told what it has done."""

    def __init__(self, directory):
        self.directory = pathlib.Path(directory)
        self.names, self.inodes = {}, {}
        for path in self.directory.rglob("*"):
            if path.is_file():
                self.names[str(path)] = self.inodes[path.stat().st_ino] = File(path.read_bytes())
        self.durable_names = dict(self.names)
        self.names_since = [self.durable_names]  # the last synchronisation of a directory

    def replay(self, calls):
        for call in calls:
            if call.error == 0:
                getattr(self, "do_" + call.kind)(call)
                if call.kind in ("rename", "link", "unlink") or call.kind == "open" and call.first:
                    self.names_since.append(dict(self.names))

    def do_open(self, call):
        if call.first:  # made by this call; its number may be that of a file that is gone
            self.names[call.path] = self.inodes[call.inode] = File()
        elif call.second:
            self.inodes[call.inode].pending.append((0, None))

    def do_nothing(self, call):
        pass

    do_read = do_mkdir = do_nothing  # a directory that files are in is made with them

    def do_write(self, call):
        self.inodes[call.inode].pending.append((call.first, call.data))

    def do_truncate(self, call):
        self.inodes[call.inode].pending.append((call.first, None))

    def do_sync(self, call):
        if not call.first:
            self.inodes[call.inode].synchronise()
            return
        kept = {path: file for path, file in self.durable_names.items() if os.path.dirname(path) != call.path}
        now = {path: file for path, file in self.names.items() if os.path.dirname(path) == call.path}
        self.durable_names = kept | now
        self.names_since = [self.durable_names]

    def do_rename(self, call):
        source, target = call.path.split("\t")
        self.names[target] = self.names.pop(source)

    def do_link(self, call):
        source, target = call.path.split("\t")
        self.names[target] = self.names[source]

    def do_unlink(self, call):
        self.names.pop(call.path, None)  # or a directory

    def now(self):
        return {path: file.content() for path, file in self.names.items()}

    def after(self, loss, seed):
        """Path to content after the power has failed: of what was not synchronised everything is lost,
        everything but the names, or what the seed decides."""
        if loss == "lost":
            return {path: file.durable for path, file in self.durable_names.items()}
        if loss == "lost-data":
            return {path: file.durable for path, file in self.names.items()}
        chance = random.Random(seed)
        names = chance.choice(self.names_since)
        return {path: file.content(lambda: chance.random() < 0.5) for path, file in names.items()}

    def write(self, image):
        for path in self.directory.rglob("*"):
            if path.is_file():
                path.unlink()
        for path, content in image.items():
            os.makedirs(os.path.dirname(path), exist_ok=True)
            pathlib.Path(path).write_bytes(content)


def contents_of(directory):
    return {str(path): path.read_bytes() for path in pathlib.Path(directory).rglob("*") if path.is_file()}
