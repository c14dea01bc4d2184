"""with_dask.py WORKERS    prints the hash of the work items, and that of an array's elements"""

import hashlib
import sys

from dask.distributed import Client, LocalCluster
from work import ITEMS, report, work

import tvmathrng.dask

if __name__ == "__main__":
    workers = int(sys.argv[1])
    with LocalCluster(n_workers=workers, threads_per_worker=1, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            report(client.gather(client.map(work, range(ITEMS))))
            chunks = (300 // workers, 70 * workers)
            array = tvmathrng.dask.randn((300, 400), chunks=chunks, seed=7)
            print(hashlib.sha256(array.compute().tobytes()).hexdigest()[:16])
