"""Programs that tests run, and what they say."""
import subprocess
import tempfile


ATTEMPTS = 3


def is_unexplained(code, spoke):
    """Whether it was Wine that failed.

    Under load it now and then does not start a program, without a word, or its own loader fails when
    the program has ended. Programs under test say why they fail, and none ends with 127.
    """
    return code == 127 or (code == 1 and not spoke)


def run(*command, code=0, **options):
    """What a command prints, which must end with an exit code."""
    command = list(map(str, command))
    for _ in range(ATTEMPTS if command[0].endswith("script/wine") else 1):
        returned, text = outcome(command, options)
        if not is_unexplained(returned, text):
            break
    assert returned == code, f"{command}: exit code {returned}\n{text}"
    return text


def outcome(command, options):
    # A file, not a pipe: Windows services that the first program starts would keep a pipe open.
    with tempfile.TemporaryFile("w+", encoding="utf-8") as output:
        done = subprocess.run(command, stdout=output, stderr=subprocess.STDOUT, **options)
        output.seek(0)
        return done.returncode, output.read()
