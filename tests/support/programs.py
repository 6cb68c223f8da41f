"""Programs that tests run, and what they say."""
import subprocess
import tempfile


def run(*command, code=0, **options):
    """What a command prints, which must end with an exit code.

    Under load Wine now and then does not start a program, or its own loader fails when the program
    has ended. Such a program is run again: those under test say why they fail, and none ends with 127.
    """
    command = list(map(str, command))
    emulated = command[0].endswith("script/wine")
    for _ in range(3 if emulated else 1):
        returned, text = outcome(command, options)
        unexplained = returned == 127 or (returned != 0 and not text)
        if not unexplained:
            break
    assert returned == code, f"{command}: exit code {returned}\n{text}"
    return text


def outcome(command, options):
    # A file, not a pipe: Windows services that the first program starts would keep a pipe open.
    with tempfile.TemporaryFile("w+", encoding="utf-8") as output:
        done = subprocess.run(command, stdout=output, stderr=subprocess.STDOUT, **options)
        output.seek(0)
        return done.returncode, output.read()
