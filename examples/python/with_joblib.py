"""with_joblib.py WORKERS"""

import sys

from joblib import Parallel, delayed
from work import ITEMS, report, work

report(Parallel(n_jobs=int(sys.argv[1]))(delayed(work)(item) for item in range(ITEMS)))
