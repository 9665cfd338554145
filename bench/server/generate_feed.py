#!/usr/bin/env python3
"""Writes a deterministic phishing feed in OpenPhish form (one URL per line).

Usage: generate_feed.py ROWS > feed.txt

A fifth of the rows are whole phishing sites (the site's root); the rest are
pages on compromised sites, four pages per site. The first whole site is
whole-0.bench.example and the first compromised site is site-0.bench.example,
which the benchmark asks about.
"""
import random
import sys

BRANDS = ["paypal", "apple", "microsoft", "amazon", "netflix", "chase", "dhl", "coinbase", "docusign", "ebay"]
LURES = ["secure", "login", "verify", "account", "update", "support", "billing", "wallet", "unlock", "alert"]
FOLDERS = ["wp-content", "wp-includes", "images", "uploads", "files", "tmp", "modules", "plugins", "assets", "css"]
FILES = ["login.php", "index.php", "verify.php", "signin.html", "auth.php", "update.htm", "next.php", "sms.php"]


def main():
    rows = int(sys.argv[1])
    rng = random.Random(20261122)
    out = sys.stdout
    whole = rows // 5
    lines = []
    for n in range(whole):
        if n == 0:
            lines.append("http://whole-0.bench.example/\n")
            continue
        brand, lure = rng.choice(BRANDS), rng.choice(LURES)
        scheme = "https" if n % 3 else "http"
        lines.append(f"{scheme}://{brand}-{lure}-{n}.bench.example/\n")
        if len(lines) >= 10000:
            out.writelines(lines)
            lines.clear()
    for n in range(rows - whole):
        site = n // 4
        folder = "/".join(rng.choice(FOLDERS) for _ in range(1 + n % 3))
        token = "%08x" % rng.getrandbits(32)
        lines.append(f"http://site-{site}.bench.example/{folder}/{token}/{rng.choice(FILES)}?id={n}\n")
        if len(lines) >= 10000:
            out.writelines(lines)
            lines.clear()
    out.writelines(lines)


if __name__ == "__main__":
    main()
