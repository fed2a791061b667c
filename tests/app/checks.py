"""What the browser tests share: checks that note a failure and go on, and the verdict at the end."""
import sys

failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print(f"FAIL: {what}", flush=True)
    return condition


def finish(success):
    """Exits with 1 after any failure, else prints `success`."""
    if failures:
        print(f"{len(failures)} failure(s)")
        sys.exit(1)
    print(success)
