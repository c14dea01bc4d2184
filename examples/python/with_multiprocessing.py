"""with_multiprocessing.py WORKERS [fork|spawn]"""

import multiprocessing
import sys

from work import ITEMS, report, work

if __name__ == "__main__":
    method = sys.argv[2] if len(sys.argv) > 2 else "spawn"
    with multiprocessing.get_context(method).Pool(int(sys.argv[1])) as pool:
        report(pool.imap_unordered(work, range(ITEMS)))
