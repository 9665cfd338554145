#!/usr/bin/env python3
"""How well the bundled xss.dat and localblock.dat separate attacks from
ordinary traffic, judged by `tarnwick check` itself.

  blocklist_quality.py TARNWICK SERVER PAYLOADS [ORDINARY...]

PAYLOADS is a list of cross-site scripting payloads, one per line: each is
sent as a browser would, percent-encoded in a query parameter of an ordinary
page. ORDINARY files hold URLs one per line (any text: URLs are picked out of
it). Prints a table: how many payloads the XSS step caught, and how many
ordinary URLs the XSS and local steps blocked (false positives)."""
import json
import re
import subprocess
import sys
import urllib.parse


def judge(tarnwick, server, urls):
    result = subprocess.run([tarnwick, "check", "--json", "--answer", "no", "--server", server],
                            input="\n".join(urls) + "\n", capture_output=True, text=True, errors="replace")
    if result.returncode > 1:
        sys.exit("tarnwick check failed: " + result.stderr[-2000:])
    return [json.loads(line) for line in result.stdout.splitlines() if line.startswith("{")]


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    tarnwick, server, payload_file = sys.argv[1:4]
    payloads = [line.rstrip("\r\n") for line in open(payload_file, encoding="utf-8", errors="replace")]
    payloads = [p for p in dict.fromkeys(payloads) if p.strip()]
    attack_urls = ["http://shop.example/search?q=" + urllib.parse.quote(p, safe="") for p in payloads]
    attacks = judge(tarnwick, server, attack_urls)
    caught = sum(1 for verdict in attacks if verdict["step"] == "xss")

    ordinary = []
    for name in sys.argv[4:]:
        text = open(name, encoding="utf-8", errors="replace").read()
        ordinary += re.findall(r"https?://[^\s\"'<>()\[\]{}\\^`|]+", text)
    ordinary = list(dict.fromkeys(u.rstrip(".,;:") for u in ordinary))
    verdicts = judge(tarnwick, server, ordinary) if ordinary else []
    false_xss = [v["url"] for v in verdicts if v["step"] == "xss"]
    false_local = [v["url"] for v in verdicts if v["step"] == "local"]

    print(f"{'list':<34}{'URLs':>8}{'caught / blocked':>18}{'rate':>9}")
    print(f"{'XSS payloads (xss step)':<34}{len(attacks):>8}{caught:>18}{100 * caught / max(len(attacks), 1):>8.1f}%")
    print(f"{'ordinary URLs, xss step':<34}{len(verdicts):>8}{len(false_xss):>18}"
          f"{100 * len(false_xss) / max(len(verdicts), 1):>8.2f}%")
    print(f"{'ordinary URLs, local step':<34}{len(verdicts):>8}{len(false_local):>18}"
          f"{100 * len(false_local) / max(len(verdicts), 1):>8.2f}%")
    for url in (false_xss + false_local)[:20]:
        print("  false positive:", url)


if __name__ == "__main__":
    main()
