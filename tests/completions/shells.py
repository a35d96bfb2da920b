#!/usr/bin/env python3
"""shells.py PREFIX: types at bash, zsh and fish what a person would, and checks what the tab key makes of it

PREFIX is where sweepctl and its completions are installed. Each case starts a shell on a terminal of
its own; in it "sweepctl" is a script that passes questions for completions on to the program and
shows the words of any other call, as the shell has split them.
"""
import fcntl
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import struct
import sys
import tempfile
import termios
import time

PROMPT = "=> "
ESCAPES = re.compile(r"\x1b(\[[0-9;?]*[ -/]*[@-~]|\][^\x07]*\x07|[()][A-Z0-9]|[=>])")
SECONDS = 60  # after which a shell that says nothing has failed

# What is typed, and the words that the program must get; "~" stands for the home folder. A folder's
# last "/" does not count: some shells take it back when the line is done.
CASES = {
    "the first of several": ("--device-root my\\ phone clean ca\t", [
        "--device-root", "my phone", "clean", "cache"]),
    "an option after blanks": ("  clean   cache  --dry\t", ["clean", "cache", "--dry-run"]),
    "a command": ("sc\t", ["scan"]),
    "words of a command": ("whitel\tpa\tad\t", ["whitelist", "paths", "add"]),
    "a category and an option": ("clean cr\t--dr\t", ["clean", "crash-reports", "--dry-run"]),
    "a value": ("--idiom ipa\t", ["--idiom", "ipad"]),
    "a value behind a sign": ("--idiom=ipa\t", ["--idiom=ipad"]),
    "a folder of the computer": ("--device-root my\t", ["--device-root", "my phone"]),
    "an app of the device": (
        "--device-root 'my phone' apps clean com.example.c\t",
        ["--device-root", "my phone", "apps", "clean", "com.example.chat"]),
    "an app of a device below the home folder": (
        "--device-root ~/my\\ phone apps clean com.example.c\t",
        ["--device-root", "~/my phone", "apps", "clean", "com.example.chat"]),
    "a protected path": (
        "--device-root my\\ phone whitelist paths remove /var/mobile/K\t",
        ["--device-root", "my phone", "whitelist", "paths", "remove", "/var/mobile/Keep this"]),
    "a protected path in quotes": (
        "--device-root my\\ phone whitelist paths remove \"/var/mobile/K\t",
        ["--device-root", "my phone", "whitelist", "paths", "remove", "/var/mobile/Keep this"]),
    "a folder of the device": (
        "--device-root my\\ phone custom-paths add /var/mobile/O\t",
        ["--device-root", "my phone", "custom-paths", "add", "/var/mobile/Old exports"]),
    "a name with a quote": (
        "--device-root my\\ phone custom-paths add /var/mobile/i\t",
        ["--device-root", "my phone", "custom-paths", "add", "/var/mobile/it's $HOME"]),
    "a name with a colon": (
        "--device-root my\\ phone custom-paths add /var/mobile/x\t",
        ["--device-root", "my phone", "custom-paths", "add", "/var/mobile/x:y=z"]),
}


class Shell:
    """A shell on a terminal."""

    def __init__(self, words, environment, folder):
        self.text = ""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(words[0], words, environment)
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 300, 0, 0))

    def type(self, keys):
        os.write(self.terminal, keys.encode())

    def wait_for(self, pattern):
        """The match of what is shown, as soon as it is; None if that is never."""
        deadline = time.monotonic() + SECONDS
        while (found := re.search(pattern, ESCAPES.sub("", self.text))) is None:
            ready, _, _ = select.select([self.terminal], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                return None
            try:
                self.text += os.read(self.terminal, 4096).decode(errors="replace")
            except OSError:  # the shell has ended
                return None
        return found

    def end(self):
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)
        os.close(self.terminal)


def make_home(home, program):
    """A home folder with a device in it and the script that stands in for the program."""
    device = home / "my phone"
    for name in ("Old exports", "it's $HOME", "x:y=z"):
        (device / "var/mobile" / name).mkdir(parents=True)
    container = device / "var/mobile/Containers/Data/Application/1"
    container.mkdir(parents=True)
    (container / ".com.apple.mobile_container_manager.metadata.plist").write_text(
        '<plist version="1.0"><dict><key>MCMMetadataIdentifier</key>'
        "<string>com.example.chat</string></dict></plist>")
    stand_in = home / "bin/sweepctl"
    stand_in.parent.mkdir()
    stand_in.write_text(f'#!/bin/sh\n[ "$1" = complete ] && exec {program} "$@"\n'
                        "printf '<%s>' \"$@\"; echo '|'\n")
    stand_in.chmod(0o755)
    added = os.spawnl(os.P_WAIT, program, program, "--device-root", str(device), "whitelist",
                      "paths", "add", "/var/mobile/Keep this")
    assert added == 0, "no path could be protected"


def shells(home, share):
    """How each shell is started with nothing but our completion."""
    bash = home / "bashrc"
    bash.write_text(f"PS1='{PROMPT}'\nbind 'set enable-bracketed-paste off'\n"
                    ". /usr/share/bash-completion/bash_completion\n"
                    f". {share}/bash-completion/completions/sweepctl\n")
    bare = home / "barebashrc"
    bare.write_text(f"PS1='{PROMPT}'\nbind 'set enable-bracketed-paste off'\n"
                    f". {share}/bash-completion/completions/sweepctl\n")
    sites = [str(path) for path in (share / "zsh/site-functions", share / "zsh/vendor-completions")
             if path.is_dir()]
    (home / ".zshrc").write_text(f"PS1='{PROMPT}'\nunsetopt zle_bracketed_paste\n"
                                 f"fpath=({' '.join(sites)} $fpath)\n"
                                 "autoload -Uz compinit\ncompinit -u -D\n")
    fish = (f"source {share}/fish/vendor_completions.d/sweepctl.fish; "
            f"function fish_prompt; echo -n '{PROMPT}'; end; set -g fish_greeting")
    return {
        "bash": ["bash", "--noprofile", "--rcfile", str(bash), "-i"],
        "bash without its library": ["bash", "--noprofile", "--rcfile", str(bare), "-i"],
        "zsh": ["zsh", "-d", "-i"],
        "fish": ["fish", "--no-config", "-i", "-C", fish],
    }


def outcome(words, environment, home, typed, wanted):
    """None, or what was shown in place of the words that were wanted."""
    shell = Shell(words, environment, home)
    try:
        if shell.wait_for(re.escape(PROMPT)) is None:
            return f"no prompt: {shell.text!r}"
        shell.type(f"sweepctl {typed}\r")
        shown = shell.wait_for(r"(<[^\n]*>)\|")
        got = re.findall(r"<([^<>]*)>", shown.group(1)) if shown else [repr(shell.text)]
        wanted = [re.sub("^~", str(home), word) for word in wanted]
        return None if [word.rstrip("/") for word in got] == wanted else f"{got}, not {wanted}"
    finally:
        shell.end()


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.splitlines()[0])
    prefix = pathlib.Path(sys.argv[1]).resolve()
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        home = pathlib.Path(folder).resolve()
        make_home(home, str(prefix / "bin/sweepctl"))
        environment = {"HOME": str(home), "ZDOTDIR": str(home), "TERM": "xterm", "LC_ALL": "C.UTF-8",
                       "PATH": f"{home}/bin:{os.environ['PATH']}"}
        for name, words in shells(home, prefix / "share").items():
            if shutil.which(words[0]) is None:
                sys.exit(f"{words[0]} is missing; run script/bootstrap --package")
            for case, (typed, wanted) in CASES.items():
                wrong = outcome(words, environment, home, typed, wanted)
                if wrong:
                    failed += 1
                    print(f"{name}, {case}: {wrong}")
            print(f"{name}: {len(CASES)} cases typed")
    sys.exit(f"{failed} cases failed" if failed else 0)


if __name__ == "__main__":
    main()
