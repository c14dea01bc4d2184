#!/usr/bin/env python3
"""Runs the MPI example on 1, 2, 3 and 5 ranks.

    test_mpi_estimate.py MPIEXEC PROGRAM

Items keyed by substream or block give the same counts and the same bits on every number of ranks;
a stream for each rank does not.
"""

import os
import subprocess
import sys


def run(mpiexec, program, ranks):
    # Open MPI's: more ranks than cores, root, and processes that may not read each other's memory.
    # Others ignore them.
    environment = dict(os.environ, OMPI_ALLOW_RUN_AS_ROOT="1", OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1",
                       OMPI_MCA_rmaps_base_oversubscribe="1",
                       OMPI_MCA_btl_vader_single_copy_mechanism="none")
    output = subprocess.run([mpiexec, "-n", str(ranks), program], check=True, text=True,
                            stdout=subprocess.PIPE, timeout=120, env=environment).stdout
    results, way = {}, None
    for line in output.splitlines():
        if line.startswith("  "):
            what, value = line.rsplit(maxsplit=1)
            results[way, what.strip()] = value
        else:
            way = line
    return results


def main():
    mpiexec, program = sys.argv[1:]
    results = [run(mpiexec, program, ranks) for ranks in (1, 2, 3, 5)]
    faults = 0
    for way, same in [("a substream for each item", True),
                      ("a block of one stream for each item", True),
                      ("a stream for each rank", False)]:
        for what in ("inside", "heights in order"):
            values = [result[way, what] for result in results]
            if len(set(values)) != (1 if same else len(values)):
                print(f"{way}, {what}: {values}")
                faults += 1
    return faults > 0


if __name__ == "__main__":
    sys.exit(main())
